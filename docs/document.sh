#!/bin/sh
# document.sh HEADER: prints a header so that all its comments count as documentation, the first as that of its class.
sed -E -e "1i /// \\\\class quorix::$(basename "$1" .h)" -e 's#^( *)//( [^-]|$)#\1///\2#' "$1"
