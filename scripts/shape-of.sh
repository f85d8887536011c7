#!/usr/bin/env bash
# Prints the shape that a palette's comment asks for, as options of thumbrender: the
# comment has the line "thumbrender -g teapot x.palette". Prints nothing for a ball.
sed -n 's/^# *thumbrender \(-g [a-z]*\) .*/\1/p' "$1" | head -1
