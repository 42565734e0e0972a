# Turns the plain comments of a public header into comments that Doxygen reads.
# - A line with a label in front, "Units      Width in pixels", becomes an item of a list; other
#   lines that are indented are kept as they stand.
# - A comment stands for all declarations up to the next blank line or comment.
# - A comment before the outermost namespace is about the inner one.
# - A comment of C, from its first line to its last, is one of plain lines; at the top of a header it
#   is about the header.

function print_comment(    i, text, label, labelled, verbatim) {
    for (i = 1; i <= comment_lines; ++i) {
        text = comment[i]
        if (text !~ /^  / || labelled) {
            if (verbatim)
                print "/// \\endverbatim"
            verbatim = 0
        }
        if (text ~ /^[A-Z][a-z]+  +[^ ]/) {
            label = text
            sub(/ .*/, "", label)
            sub(/^[A-Z][a-z]+ +/, "", text)
            print "/// - **" label "** " text
            labelled = 1
        } else if (labelled && text ~ /^           [^ ]/) {
            sub(/^ +/, "", text)
            print "///   " text
        } else {
            labelled = 0
            if (text ~ /^  / && !verbatim) {
                print "/// \\verbatim"
                verbatim = 1
            }
            print "/// " text
        }
    }
    if (verbatim)
        print "/// \\endverbatim"
    comment_lines = 0
}

function print_run(    i, shared) {
    shared = comment_lines && ends > 1 && !opens
    if (run_lines && run[1] ~ /^namespace zvk \{/ && comment_lines)
        print "/// \\namespace zvk::Pelkraft"
    if (run_lines)
        print_comment()
    if (shared)
        print "///@{"
    for (i = 1; i <= run_lines; ++i)
        print run[i]
    if (shared)
        print "///@}"
    run_lines = ends = opens = 0
}

# The licence is no description.
/^\/\/ SPDX-/ { next }

/^\/\* SPDX-/ { next }

/^ *\/\*/ || in_comment_of_c {
    if (run_lines)
        print_run()
    ends_here = sub(/ *\*\/$/, "")
    if (in_comment_of_c)
        sub(/^ *\* ?/, "")
    else
        sub(/^ *\/\* ?/, "")
    in_comment_of_c = !ends_here
    comment[++comment_lines] = $0
    ends_comment_of_c = NR
    next
}

/^ *$/ && ends_comment_of_c == NR - 1 && comment_lines {
    print "/// \\file"
    print_comment()
    print
    next
}

/^ *\/\// {
    if (run_lines)
        print_run()
    sub(/^ *\/\/ ?/, "")
    comment[++comment_lines] = $0
    next
}

/^ *$/ || /^ *}( [a-z_]+)?;?$/ || /^[a-z]+:$/ {
    print_run()
    print
    next
}

{
    run[++run_lines] = $0
    ends += /;$/
    opens += /[{}]/
}

END { print_run() }
