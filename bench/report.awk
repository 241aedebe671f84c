# Reads the CSV of quor_bench; prints a table of medians and of their ratios to the floor of the same
# run, and writes them to the files named by the variables json and svg.
BEGIN { FS = ","; subjects["quor"] = 1; order[++subject_count] = "quor" }
$1 ~ /_median"?$/ {
    name = $1; gsub(/"|_median|\/real_time|\/manual_time/, "", name)
    parts = split(name, part, "/")
    row = part[1] (parts > 2 ? ", " part[3] : "")
    sub(/threads:1$/, "1 thread", row); sub(/threads:/, "", row)
    if (row ~ /, [2-9]/) row = row " threads"
    subject = part[2]
    if (!(row in known)) { known[row] = 1; rows[++row_count] = row }
    if (subject != "floor" && !(subject in subjects)) { subjects[subject] = 1; order[++subject_count] = subject }
    nanoseconds[row, subject] = $3
}
function ratio(row, subject) { return nanoseconds[row, subject] / nanoseconds[row, "floor"] }
END {
    printf "%-34s %10s", "", "floor ns"
    for (s = 1; s <= subject_count; ++s) printf " %12s %6s", order[s] " ns", "ratio"
    print ""
    print "{\n  \"unit\": \"ns\",\n  \"questions\": [" > json
    height = 30 + 26 * row_count
    print "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"760\" height=\"" height "\" font-family=\"sans-serif\" font-size=\"12\">" > svg
    print "<text x=\"10\" y=\"18\">Time as a multiple of the least that does the same work (line)</text>" > svg
    for (r = 1; r <= row_count; ++r) {
        row = rows[r]
        printf "%-34s %10.1f", row, nanoseconds[row, "floor"]
        printf "    {\"question\": \"%s\", \"floor\": %.1f", row, nanoseconds[row, "floor"] > json
        y = 8 + 26 * r
        printf "<text x=\"10\" y=\"%d\">%s</text>", y + 13, row > svg
        for (s = 1; s <= subject_count; ++s) {
            subject = order[s]
            if (!((row, subject) in nanoseconds)) { printf " %12s %6s", "", ""; continue }
            printf " %12.1f %6.2f", nanoseconds[row, subject], ratio(row, subject)
            printf ", \"%s\": %.1f, \"%s ratio\": %.3f", subject, nanoseconds[row, subject], subject, ratio(row, subject) > json
            width = ratio(row, subject) * 120; if (width > 460) width = 460
            thick = 20 / subject_count
            printf "<rect x=\"250\" y=\"%.1f\" width=\"%.1f\" height=\"%.1f\" fill=\"%s\"/>", y + thick * (s - 1), width, thick - 1, subject == "quor" ? "#2a6f97" : "#b0b0b0" > svg
            printf "<text x=\"%.1f\" y=\"%.1f\">%s %.2f</text>\n", 256 + width, y + thick * s - 4, subject, ratio(row, subject) > svg
        }
        print ""
        print "}" (r < row_count ? "," : "") > json
    }
    print "  ]\n}" > json
    print "<line x1=\"370\" y1=\"26\" x2=\"370\" y2=\"" height "\" stroke=\"black\"/>\n</svg>" > svg
}
