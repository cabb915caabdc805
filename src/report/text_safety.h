// Text as every output can carry it. Transcripts are bytes: q7cal prints
// ASCII, but the device library's texts may hold anything, and a log may be
// damaged; identities come from a command line. JSON needs valid UTF-8; XML
// 1.0 allows no control character but tab, line feed and carriage return,
// not even as a reference.
#ifndef Q7REPORT_TEXT_SAFETY_H
#define Q7REPORT_TEXT_SAFETY_H

#include <string>

namespace q7report {

bool IsValidUtf8(const std::string &text);

// `text` with each byte that is not part of a valid UTF-8 sequence (a stray
// byte, a truncated or overlong sequence, a surrogate) as U+FFFD.
std::string ValidUtf8(const std::string &text);

// Valid UTF-8 `text` with each control character but tab and line feed shown
// as its Unicode control picture (U+2400 to U+241F, DEL as U+2421), and the
// noncharacters U+FFFE and U+FFFF as U+FFFD: text that XML and HTML carry
// and a reader can still see. A GS1 group separator becomes U+241D.
std::string VisibleControls(const std::string &text);

}  // namespace q7report

#endif
