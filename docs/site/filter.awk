# What Doxygen reads of a header. What says by its form all that it is has no
# comment there: a setter beside its getter gets one that leads to it, the usual
# operators get their usual one, and a defaulted copy of a contract, which only its
# heirs see, is left out. Every header is a documented file: else its functions
# would not count. Lines keep their numbers.
BEGIN {
    usual["=="] = "Whether all values are equal: 0 equals -0, and a NaN equals nothing."
    usual["!="] = "Whether any value differs."
    usual["<<"] = "For people who debug; nothing reads it back."
    usual["+("] = usual["-("] = "Component by component."
}
/\\file/ { hasFile = 1 }
{
    lines[NR] = $0
    for (text = $0; match(text, /[A-Za-z0-9]+\(/); text = substr(text, RSTART + RLENGTH))
        names[substr(text, RSTART, RLENGTH - 1)]
}
END {
    for (i = 1; i <= NR; ++i) {
        line = lines[i]
        if (line ~ /\(const [A-Za-z]+&\) = default;$/)
            line = ""
        else if (!documented && match(line, /virtual void Set[A-Za-z]+\(/)) {
            value = substr(line, RSTART + 16, RLENGTH - 17)
            getter = ("Get" value in names) ? "Get" value : ("Is" value in names) ? "Is" value : value
            if (getter in names)
                line = "/** Sets what " getter "() answers. */" line
        }
        else if (!documented && match(line, /operator(==|!=|<<|\+|-)\(/) && line ~ /[;}]$/)
            line = line " ///< " usual[substr(line, RSTART + 8, 2)]
        else if (line == "#pragma once" && !hasFile)
            line = line " /** \\file */"
        if (line !~ /^template/)
            documented = line ~ /^ *\/\/\//
        print line
    }
}
