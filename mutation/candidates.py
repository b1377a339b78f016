"""Small faults that can be put into a source: where, what stood there, what shall."""

import bisect
import re
from dataclasses import dataclass


@dataclass(frozen=True)
class Mutant:
    file: str  # from the top of the tree
    line: int  # from 1
    start: int  # in the file's text
    end: int
    text: str  # instead of what stands there
    kind: str
    before: str  # the whole line, without the spaces around it
    after: str


def blank(match):
    return re.sub(r"[^\n]", " ", match.group())


COMMENT_OR_TEXT = re.compile(r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])*\'', re.S)
DIRECTIVE = re.compile(r"^[ \t]*#(?:\\\n|[^\n])*", re.M)


def code_of(text):
    """The text without comments and directives, with every literal text filled up; nothing moves."""

    def hide(match):
        found = match.group()
        return blank(match) if found[0] == "/" else found[0] + "s" * (len(found) - 2) + found[-1]

    return DIRECTIVE.sub(blank, COMMENT_OR_TEXT.sub(hide, text))


# What only makes faster, and what the compiler itself proves or needs.
NO_BEHAVIOUR = re.compile(r"__builtin_prefetch|static_assert|\bQ_[A-Z]+|^\s*(?:using|template|extern|friend|typedef)\b")
VARIABLE = re.compile(r"(?:const|constexpr|static|alignas|auto)\b|(?!delete )[\w:]+(?:<.*>)?[&*]? [&*]?\w+(?:\[.*\])?(?: =|;|\(|\{)")
DECLARATION = re.compile(r"\bvirtual\b|\boperator\b|= (?:0|default|delete);")


def scopes_of(code):
    """For each character in what it stands: n(amespace), t(ype), e(num), b(ody), i(nitializer)."""
    scopes, stack, head = [], ["n"], ""
    for char in code:
        if char == "{":
            if re.search(r"\bnamespace\b", head):
                stack.append("n")
            elif re.search(r"\benum\b", head):
                stack.append("e")
            elif re.search(r"\b(?:class|struct|union)\b", head) and not re.search(r"\)\s*(?:const)?\s*$|=\s*$", head):
                stack.append("t")
            else:
                stack.append("b" if ")" in head or stack[-1] == "b" else "i")
        scopes.append(stack[-1])
        if char == "}" and len(stack) > 1:
            stack.pop()
        head = "" if char in "{};" else head + char
    return scopes


def closing(code, place):
    """Where the bracket at `place` is closed within its line, or -1."""
    depth = 0
    for i in range(place, len(code)):
        if code[i] == "\n":
            return -1
        depth += (code[i] in "([{") - (code[i] in ")]}")
        if depth == 0:
            return i
    return -1


SWAPS = [  # kind, what is looked for, what may stand instead of its first group
    ("relation", r"(?<=\s)(<=|>=|==|!=|<|>)(?=\s)",
     {"<": ["<=", ">"], "<=": ["<", ">="], ">": [">=", "<"], ">=": [">", "<="], "==": ["!="], "!=": ["=="]}),
    ("arithmetic", r"(?<=\s)([-+*/%])(?=\s)",
     {"+": ["-"], "-": ["+"], "*": ["/", "+"], "/": ["*"], "%": ["*"]}),
    ("arithmetic", r"(?<=\s)([-+*/|&]=|<<=|>>=)(?=\s)",
     {"+=": ["-=", "="], "-=": ["+=", "="], "*=": ["/=", "="], "/=": ["*="], "|=": ["&=", "="], "&=": ["|=", "="],
      "<<=": [">>="], ">>=": ["<<="]}),
    ("arithmetic", r"(\+\+|--)", {"++": ["--"], "--": ["++"]}),
    ("arithmetic", r"(?<![\w)\]] )(?<![\w)\]-])(-)(?=[\w(])", {"-": [""]}),
    ("logic", r"(?<=\s)(&&|\|\||&|\|)(?=\s)", {"&&": ["||"], "||": ["&&"], "&": ["|"], "|": ["&"]}),
    ("logic", r"(!|~)(?=[\w(])", {"!": [""], "~": [""]}),
    ("logic", r"\b(true|false)\b", {"true": ["false"], "false": ["true"]}),
    ("logic", r"(?<=\s)(\?)(?=\s)", {"?": ["|| true ?", "&& false ?"]}),
    ("extreme", r"\b(?:std::)?(min|max)\b", {"min": ["max"], "max": ["min"]}),
    ("jump", r"\b(break|continue|return);", {"break": ["continue", ""], "continue": ["break", ""], "return": [""]}),
    ("member", r"\.(x|y|z|r|g|b|front|back|begin|end|start|first|second|last|low|high|width|height)\b",
     {"x": ["y"], "y": ["z", "x"], "z": ["x"], "r": ["g"], "g": ["b"], "b": ["r"], "front": ["back"],
      "back": ["front"], "begin": ["end"], "end": ["begin", "start"], "start": ["end"], "first": ["second", "last"],
      "second": ["first"], "last": ["first"], "low": ["high"], "high": ["low"], "width": ["height"],
      "height": ["width"]}),
]


def other_numbers(number):
    if match := re.fullmatch(r"(\d+)(u?)", number):
        value = int(match[1])
        return [f"{other}{match[2]}" for other in (value + 1, value - 1) if other >= 0]
    if match := re.fullmatch(r"0x[0-9a-fA-F]+u?", number):
        return [f"{int(number.rstrip('u'), 16) ^ 1:#x}" + "u" * number.endswith("u")]
    if match := re.fullmatch(r"(0x1p-?)(\d+)f", number):
        return [f"{match[1]}{int(match[2]) + 1}f"]
    if match := re.fullmatch(r"([\d.]+(?:e[-+]?\d+)?)(f?)", number):
        value = float(match[1])
        if value in (0.0, 1.0):
            return [f"{1.0 - value}{match[2]}"]
        digit = max(i for i, c in enumerate(match[1].split("e")[0]) if c.isdigit())
        return [f"{2 * value!r}{match[2]}", number[:digit] + str((int(number[digit]) + 1) % 10) + number[digit + 1:]]
    return []


def in_line(code, text, first, last):
    """Faults within one line: (start, end, what shall stand there, kind)."""
    for kind, pattern, others in SWAPS:
        for match in re.compile(pattern).finditer(code, first, last):
            for other in others[match[1]]:
                yield *match.span(1), other, kind
    for match in re.compile(r"(?<![\w.])\d[\w.]*(?:(?<=e)-\d+|(?<=p)-\d+f?)?").finditer(code, first, last):
        for other in other_numbers(match.group()):
            yield *match.span(), other, "constant"
    for match in re.compile(r"\"s*\"|'s+'").finditer(code, first, last):
        literal = text[match.start():match.end()]
        if literal[0] == "'":
            yield *match.span(), "'_'", "text"
            continue
        yield *match.span(), literal[:-1] + 'x"', "text"
        if "%1" in literal and "%2" in literal:
            yield *match.span(), literal.replace("%1", "%0").replace("%2", "%1").replace("%0", "%2"), "text"
    for match in re.compile(r"\b(?:if|while) (\()").finditer(code, first, last):
        end = closing(code, match.start(1))
        if end > 0:
            condition = text[match.end(1):end]
            for other in (f"!({condition})", "true", "false"):
                yield match.end(1), end, other, "condition"
    for match in re.compile(r"(?<=[\w>])\(|\{").finditer(code, first, last):
        end = closing(code, match.start())
        places = [match.start()] + [i for i in range(match.end(), end) if code[i] == ","
                                    and all(closing(code, k) < i or closing(code, k) >= end
                                            for k in range(match.end(), i) if code[k] in "([{")] + [end]
        for a, b, c in zip(places, places[1:], places[2:]):
            left, right = text[a + 1:b].strip(), text[b + 1:c].strip()
            if left and right and left != right:
                start = a + 1 + (code[a] == ",")
                yield start, c, f"{right}, {left}", "arguments"
    whole = code[first:last].strip()
    start = first + code[first:last].index(whole)
    if match := re.fullmatch(r"return (.+);", whole):
        if match[1] not in ("{}", "true", "false", "nullptr", "0", "1"):
            yield start + 7, start + len(whole) - 1, "{}", "result"
    before = code[:first].rstrip()
    if (re.fullmatch(r"[\w*+(-].*;", whole) and not VARIABLE.match(whole) and not re.match(r"(?:return|break|continue|throw|case|else)\b", whole)
            and (before[-1:] in ";{})" or before.endswith("else"))):
        yield start, start + len(whole), ";", "statement"


def mutants_of(file, text):
    """All of a file, by line."""
    code = code_of(text)
    scopes = scopes_of(code)
    starts = [0] + [i + 1 for i, char in enumerate(text) if char == "\n"]
    by_line = {}
    for number, first in enumerate(starts, 1):
        last = text.find("\n", first)
        last = len(text) if last < 0 else last
        line = code[first:last]
        if not line.strip() or NO_BEHAVIOUR.search(line):
            continue
        for start, end, other, kind in in_line(code, text, first, last):
            outside = scopes[start] in "nt" and not re.match(r"\s*[:,] \w+\(", line)
            if scopes[start] == "e" or (outside and (" = " not in line[:start - first] or DECLARATION.search(line))):
                continue
            after = (text[first:start] + other + text[end:last]).strip()
            by_line.setdefault(number, []).append(
                Mutant(file, number, start, end, other, kind, text[first:last].strip(), after))
    assert all(bisect.bisect(starts, m.start) == n for n, found in by_line.items() for m in found)
    return by_line


def in_random_order(by_line, random):
    """One fault for each line, then another one for each, and so on; kinds are drawn before faults."""
    left = {line: list(found) for line, found in by_line.items()}
    while left:
        lines = sorted(left)
        random.shuffle(lines)
        for line in lines:
            kind = random.choice(sorted({m.kind for m in left[line]}))
            chosen = random.choice([m for m in left[line] if m.kind == kind])
            left[line].remove(chosen)
            if not left[line]:
                del left[line]
            yield chosen
