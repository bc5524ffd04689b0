# shellcheck shell=bash
# Rows of the table of measurements, for the scripts of this folder. A missed limit sets `missed` to
# 1.
missed=0

table_head() {
    printf '%-42s %12s %12s %8s %6s %6s\n' "" "meshrake" "against" "ratio" "must" "aim"
}

# table_row MEASURE OURS AGAINST RATIO MUST AIM: prints a row. The ratio must be at most MUST, or at
# least MUST if that begins with ">".
table_row() {
    local verdict
    verdict=$(awk -v ratio="$4" -v must="${5#>}" -v aim="$6" -v more="${5:0:1}" 'BEGIN {
        sign = more == ">" ? -1 : 1
        if (sign * ratio > sign * must) print "MISSED"
        else if (sign * ratio <= sign * aim) print "aim met"
    }')
    [ "$verdict" != MISSED ] || missed=1
    printf '%-42s %12s %12s %8s %6s %6s  %s\n' "$1" "$2" "$3" "$4" "$5" "$6" "$verdict"
}

ratio() { awk -v a="$1" -v b="$2" 'BEGIN { printf "%.2f", a / b }'; }
