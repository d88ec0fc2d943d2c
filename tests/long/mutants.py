"""Single-line changes of C++ sources."""

import dataclasses
import pathlib
import re

# Patterns and their replacements, outside of string literals and comments. clang-format puts blanks
# around binary operators but not around template brackets.
REPLACEMENTS = [(re.compile(pattern), replacement) for pattern, replacement in [
    (r" == ", " != "),
    (r" != ", " == "),
    (r" < ", " <= "),
    (r" <= ", " < "),
    (r" > ", " >= "),
    (r" >= ", " > "),
    (r"(^|\s)&& ", r"\1|| "),
    (r"(^|\s)\|\| ", r"\1&& "),
    (r" \+ ", " - "),
    (r" - ", " + "),
    (r" \* ", " / "),
    (r" / ", " * "),
    (r" \+= ", " -= "),
    (r" -= ", " += "),
    (r" & ", " | "),
    (r"\+\+", "--"),
    (r"\btrue\b", "false"),
    (r"\bfalse\b", "true"),
    (r"\b(if|while) \((.*)\) \{$", r"\1 (!(\2)) {"),
    (r"\breturn (?!\{\};)[^;{]+;$", "return {};"),
    (r"!(?=[\w(])", ""),
    (r" \? (.*) : ", r" && false ? \1 : "),
    # a statement that is not a declaration: a call, an assignment, a jump
    (r"^(\s+)(?!return\b|using\b|delete\b)([\w.:]+(->\w+)?\(.*\)|[\w.:]+(->\w+)? [+\-]?= .*"
     r"|break|continue);$", r"\1;"),
]]
NUMBER = re.compile(r"(?<![\w.\"])\d+(?![\w.])")
TEXT = re.compile(r"\"(?:[^\"\\]|\\.)*\"")


@dataclasses.dataclass(frozen=True)
class Mutant:
    path: pathlib.Path  # below the checkout
    line: int  # from 1
    before: str
    after: str

    def __str__(self):
        return f"{self.path}:{self.line}: {self.before.strip()}  =>  {self.after.strip()}"

    def row(self, outcome):
        return "\t".join([outcome, str(self.path), str(self.line), self.before, self.after]) + "\n"

    def text(self, source):
        """The text of the file with the change."""
        lines = source.read_text().split("\n")
        if lines[self.line - 1] != self.before:
            raise SystemExit(f"{self.path}:{self.line} has changed; make a new report")
        lines[self.line - 1] = self.after
        return "\n".join(lines)


def read_report(report):
    """The changes in a report, each with its outcome."""
    found = []
    for row in report.read_text().splitlines():
        outcome, path, line, before, after = row.split("\t")
        found.append((Mutant(pathlib.Path(path), int(line), before, after), outcome))
    return found


def hide_texts(line):
    """The line with blanked string literals and without its comment, columns unchanged."""
    hidden = TEXT.sub(lambda text: '"' + "\0" * (len(text[0]) - 2) + '"', line)
    return re.sub(r"\s*//.*", "", hidden)


def changes(line):
    hidden = hide_texts(line)
    for pattern, replacement in REPLACEMENTS:
        for match in pattern.finditer(hidden):
            # match the original line again, so that the groups contain the literals
            shown = pattern.fullmatch(line, match.start(), match.end()) or pattern.match(
                line, match.start())
            if shown:
                yield line[:match.start()] + shown.expand(replacement) + line[match.end():]
    for match in NUMBER.finditer(hidden):
        yield line[:match.start()] + str(int(match[0]) + 1) + line[match.end():]
    for match in TEXT.finditer(line):
        if hidden[match.start():match.start() + 1] == '"':
            yield line[:match.end() - 1] + "~" + line[match.end() - 1:]


def of_file(path, text):
    """All changes of a source file."""
    found = []
    for number, line in enumerate(text.split("\n"), 1):
        if line.lstrip().startswith(("#", "//")):
            continue
        found += [Mutant(path, number, line, after) for after in changes(line) if after != line]
    return list(dict.fromkeys(found))
