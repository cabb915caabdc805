// Under AddressSanitizer, an allocation above 1 GB fails as it may on the
// device's host, instead of taking seconds to map: a command asked for a
// buffer of 4294967295 bytes then takes its allocation-failure path.
extern "C" const char *__asan_default_options() { return "allocator_may_return_null=1:max_allocation_size_mb=1024"; }
