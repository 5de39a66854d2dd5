#!/bin/sh
# What GCC runs in place of its own steps (-wrapper): the link goes to lld, which takes a fraction of
# the time, everything else goes its way. This GCC has its linker built in and ignores -fuse-ld.
step=$1
shift
case $step in
*collect2) exec ld.lld "$@" ;;
*) exec "$step" "$@" ;;
esac
