#!/bin/sh
# Prints a session's answers (a golden CASE.in) as the program is to read
# them: "#" at a line's start or after a blank begins a comment, which is left
# out with the blanks before it, and a line that holds nothing but a comment
# is left out whole. A blank line stays: it is an answer, Enter.
#   answers.sh CASE.in
exec sed -E '/^[[:space:]]*#/d; s/[[:space:]]+#.*$//' "$1"
