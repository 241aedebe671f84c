# Reads the CSV of the benchmarks; prints medians and their ratios to the floor of the same run, and
# writes them to the files named by the variables json and svg.
BEGIN { FS = ","; peer_count = 0 }
$1 ~ /_median"?$/ {
    name = $1; gsub(/"|_median|\/real_time|\/manual_time/, "", name)
    parts = split(name, part, "/")
    row = part[1] (parts > 2 ? ", " part[3] : "")
    sub(/threads:1$/, "1 thread", row); sub(/threads:/, "", row)
    if (row ~ /, [2-9]/) row = row " threads"
    subject = part[2]
    if (!(row in known)) { known[row] = 1; rows[++row_count] = row }
    if (subject != "floor" && subject != "quor" && !(subject in peers)) {
        peers[subject] = 1; order[++peer_count] = subject
    }
    nanoseconds[row, subject] = $3
}
function sort_rows(    r, hole, row) { # they come in the order in which the runs ended
    for (r = 2; r <= row_count; ++r) {
        row = rows[r]
        for (hole = r; hole > 1 && rows[hole - 1] > row; --hole) rows[hole] = rows[hole - 1]
        rows[hole] = row
    }
}
function ratio(row, subject) { return nanoseconds[row, subject] / nanoseconds[row, "floor"] }
function bar(row, subject, colour,    width) {
    width = ratio(row, subject) * 100; if (width > 460) width = 460
    printf "<rect x=\"250\" y=\"%d\" width=\"%.1f\" height=\"11\" fill=\"%s\"/>", y, width, colour > svg
    printf "<text x=\"%.1f\" y=\"%d\">%.2f%s</text>\n", 256 + width, y + 10, ratio(row, subject), \
        subject == "quor" ? "" : " " subject > svg
    y += 15
}
function picture(    r, p, row, bars, height) {
    for (r = 1; r <= row_count; ++r) {
        bars += 1
        for (p = 1; p <= peer_count; ++p) bars += ((rows[r], order[p]) in nanoseconds)
    }
    height = 34 + 15 * bars + 4 * row_count
    print "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"800\" height=\"" height "\" viewBox=\"0 0 800 " height "\" font-family=\"sans-serif\" font-size=\"12\">" > svg
    print "<rect width=\"800\" height=\"" height "\" fill=\"white\"/>" > svg
    print "<text x=\"10\" y=\"18\">Time as a multiple of the least that does the same work (the line)</text>" > svg
    y = 30
    for (r = 1; r <= row_count; ++r) {
        row = rows[r]
        printf "<text x=\"10\" y=\"%d\">%s</text>", y + 10, row > svg
        bar(row, "quor", "#2a6f97")
        for (p = 1; p <= peer_count; ++p) if ((row, order[p]) in nanoseconds) bar(row, order[p], "#b0b0b0")
        y += 4
    }
    print "<line x1=\"350\" y1=\"26\" x2=\"350\" y2=\"" height "\" stroke=\"black\"/>\n</svg>" > svg
}
END {
    sort_rows()
    printf "%-34s %10s %10s %6s\n", "", "floor ns", "quor ns", "ratio"
    print "{\n  \"unit\": \"ns\",\n  \"questions\": [" > json
    for (r = 1; r <= row_count; ++r) {
        row = rows[r]
        printf "%-34s %10.1f %10.1f %6.2f\n", row, nanoseconds[row, "floor"], nanoseconds[row, "quor"], ratio(row, "quor")
        printf "    {\"question\": \"%s\", \"floor\": %.1f, \"quor\": %.1f, \"quor ratio\": %.3f", row, \
            nanoseconds[row, "floor"], nanoseconds[row, "quor"], ratio(row, "quor") > json
        for (p = 1; p <= peer_count; ++p) {
            if (!((row, order[p]) in nanoseconds)) continue
            compared[row] = 1
            printf ", \"%s\": %.1f, \"%s ratio\": %.3f", order[p], nanoseconds[row, order[p]], order[p], ratio(row, order[p]) > json
        }
        print "}" (r < row_count ? "," : "") > json
    }
    print "  ]\n}" > json
    if (peer_count > 0) {
        printf "\n%-34s %10s", "Ratios of others to the floor", "quor"
        for (p = 1; p <= peer_count; ++p) printf " %10s", order[p]
        print ""
        for (r = 1; r <= row_count; ++r) {
            if (!(rows[r] in compared)) continue
            printf "%-34s %10.2f", rows[r], ratio(rows[r], "quor")
            for (p = 1; p <= peer_count; ++p) printf " %10s", (rows[r], order[p]) in nanoseconds ? sprintf("%.2f", ratio(rows[r], order[p])) : ""
            print ""
        }
    }
    picture()
}
