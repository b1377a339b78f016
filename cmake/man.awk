# Turns the page that `lumenta help` prints into one for man. Sections begin at the
# margin; below, what is described stands at four spaces and its text at eight.
function escaped(text)
{
    sub(/^ +/, "", text)
    gsub(/\\/, "\\e", text)
    gsub(/--/, "\\-\\-", text)
    gsub(/ -/, " \\-", text)
    sub(/^-/, "\\-", text)
    return text ~ /^[.']/ ? "\\&" text : text
}

BEGIN { printf ".TH %s 1 \"\" \"lumenta %s\"\n", toupper(name), version }
/^[A-Z]/ {
    if (section == "SYNOPSIS") print ".fi"
    section = $0
    print ".SH " section
    if (section == "SYNOPSIS") print ".nf"
    next
}
/^$/ {
    if (section == "DESCRIPTION") print ".PP"
    next
}
section == "NAME" {
    sub(/^ *lumenta( [a-z]+)? - /, "")
    print name " \\- " escaped($0)
    next
}
section == "SYNOPSIS" {
    print substr($0, 5)
    next
}
section == "EXIT STATUS" {
    print ".TP\n" $1
    sub(/^ *[0-9]+ +/, "")
}
section != "DESCRIPTION" && /^    [^ ]/ { print ".TP\n.B " escaped($0); next }
{ print escaped($0) }
END { if (others != "") print ".SH SEE ALSO\n" others }
