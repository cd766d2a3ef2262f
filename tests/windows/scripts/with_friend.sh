#!/bin/bash
# with_friend.sh FRIEND PORT BOT PROGRAM...: runs a bot of the samples, which makes its account BOT, beside a friend who
# asks it and tells it to quit. QUORIX_RUN runs a program for Windows, QUORIX_HOST one of its scripts.
set -eu
friend=$1 port=$2 bot=$3
shift 3
timeout 100 $QUORIX_RUN "$@" localhost "$port" "$bot" secret create &
asked=0
$QUORIX_RUN "$QUORIX_HOST" "$friend" "$port" "$bot" || asked=$?
wait $! && exit $asked
