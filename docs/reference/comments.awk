# Turns the comments of a header into those that Doxygen reads. The numbers of lines stay, so that
# its warnings name the right ones.
#
# A comment before a declaration documents it and the declarations up to the next comment, blank
# line or closing brace. A comment after code documents what is before it. A comment before a blank
# line is left out. Code between backticks stays as it is.

# Escapes what would be a command, a link or a tag.
function plain(text,    parts, count, i, result) {
    count = split(text, parts, "`")
    for (i = 1; i <= count; ++i) {
        if (i % 2 == 1) gsub(/[\\@#%&<>*_]/, "\\\\&", parts[i])
        result = result (i > 1 ? "`" : "") parts[i]
    }
    return result
}

# A line that is indented in its comment is part of a table or an example: four blanks in Markdown.
function documented(line,    indent, text) {
    indent = line
    sub(/\/\/.*/, "", indent)
    text = line
    sub(/^ *\/\/ ?/, "", text)
    return indent "/// " (text ~ /^ / ? "    " text : plain(text))
}

# True if the code has several declarations and no body, so that one comment is for all of them.
function isGroup(    i, line, statements) {
    for (i = 1; i <= codes; ++i) {
        line = code[i]
        gsub(/{[^{}]*}/, "", line)
        if (line ~ /[{}]/) return 0
        if (line ~ /;( *\/\/.*)?$/) ++statements
    }
    return comments > 0 && statements > 1
}

# Writes the comment and the code after it. The mark of the end of a group is put before the next
# line.
function flush(    i, group) {
    group = isGroup()
    for (i = 1; i <= comments; ++i) {
        print end (i == 1 && group ? "/** @{ */ " : "") (codes > 0 ? documented(comment[i]) : "")
        end = ""
    }
    for (i = 1; i <= codes; ++i) {
        print end code[i]
        end = ""
    }
    if (group) end = "/** @} */ "
    comments = codes = 0
}

/^ *\/\/( |$)/ {
    if (codes > 0) flush()
    comment[++comments] = $0
    next
}
/^ *$/ {
    flush()
    print end
    end = ""
    next
}
{
    line = $0
    if (line ~ /^ *}/ && codes > 0) flush()
    if (line !~ /^(#| *})/ && match(line, / \/\/ /))
        line = substr(line, 1, RSTART) "///< " plain(substr(line, RSTART + 4))
    code[++codes] = line
}
END { flush() }
