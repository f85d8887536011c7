#!/usr/bin/env python3
"""Writes a program's manual page, and its completion for bash, zsh and fish, from the
help that the program prints: into FOLDER the files NAME.1, NAME, _NAME and NAME.fish.

The help is read as it is laid out for people:

    Usage: NAME [options] FILE      the synopsis
    Text.                           paragraphs, up to a heading
    Options:                        a heading ends with ':'
      -D name[=value]  Text         an entry: a label, two blanks or a tab, what it means
      -g type  Text                 a label has one spelling or more between ', ', each
                                    with its value
               word - Text          deeper lines belong to the entry; these are the words
                                    that its value may be, and so are those of a text
                                    with "one, two or three" in front or behind ':'
    Engines: one, two.              the text of a heading may follow it; such a list has
                                    the words for values that are called ENGINE
"""
import argparse
import pathlib
import re
import subprocess

WORD_ROW = re.compile(r"([a-z/]+) - ")
HEADINGS = {"Status": "EXIT STATUS"}


class Entry:
    def __init__(self, label, text):
        self.label = label
        self.lines = [text]
        self.listed = []  # words that a section of its own lists

    @property
    def options(self):
        """Pairs of a spelling and its value's name, which is '' without one."""
        found = [re.match(r"(--?[\w-]+)[ =]?(.*)", spelling) for spelling in
                 self.label.split(", ")]
        return [match.groups() for match in found if match]

    @property
    def value(self):
        return next((value for _, value in self.options if value), "")

    @property
    def words(self):
        """The words that the value may be, when the help tells."""
        listed = re.search(r"(?:^|: )([a-z]+(?:, [a-z]+)*) or ([a-z]+)(?:,| \(|$)", self.summary)
        if listed:
            return listed[1].split(", ") + [listed[2]]
        rows = [WORD_ROW.match(line) for line in self.lines[1:]]
        return self.listed or [word for row in rows if row for word in row[1].split("/")]

    @property
    def takes_file(self):
        return re.search("file|folder|directory", self.value, re.IGNORECASE) is not None

    @property
    def summary(self):
        return self.lines[0]


class Help:
    """What a help text says: `usage`, `description` (lines) and `sections`, a list of
    heading and items, where an item is an Entry or a paragraph's line."""

    def __init__(self, text):
        self.usage, *rest = text.splitlines()
        self.usage = re.sub(r"^Usage: \S+ ?", "", self.usage)
        self.sections = [("DESCRIPTION", [])]
        for line in rest:
            self._read(line.expandtabs(8))
        lists = {heading: items[0] for heading, items in self.sections if items}
        for entry in self.options:
            words = lists.get(entry.value.upper() + "S", "")
            entry.listed = words.rstrip(".").split(", ") if isinstance(words, str) and words else []

    def _read(self, line):
        heading = re.match(r"([A-Z][a-z]+):( .*)?$", line)
        items = self.sections[-1][1]
        if heading:
            name = HEADINGS.get(heading[1], heading[1].upper())
            self.sections.append((name, [heading[2].strip()] if heading[2] else []))
        elif not line.startswith(" "):
            items.append(line)
        elif re.match(r" {1,4}\S", line):
            label, _, text = line.strip().partition("  ")
            items.append(Entry(label, text.strip()))
        elif items and isinstance(items[-1], Entry):
            items[-1].lines.append(line.strip())
        else:
            items.append(line.strip())

    @property
    def options(self):
        return [item for _, items in self.sections for item in items
                if isinstance(item, Entry) and item.options]


def roff(text):
    """Text that troff prints as it is, at a line's start too."""
    text = text.replace("\\", "\\e").replace("-", "\\-")
    return re.sub(r"^([.'])", r"\\&\1", text)


def roff_label(entry):
    if not entry.options:
        return roff(entry.label)
    return ", ".join(f"\\fB{roff(name)}\\fR" + (f" \\fI{roff(value)}\\fR" if value else "")
                     for name, value in entry.options)


def roff_item(item):
    if not isinstance(item, Entry):
        return roff(item) + "\n"
    out = f".TP\n{roff_label(item)}\n"
    for before, line in zip([""] + item.lines, item.lines):
        breaks = WORD_ROW.match(line) or WORD_ROW.match(before)
        out += (".br\n" if breaks else "") + roff(line) + "\n"
    return out


def manual(name, help_text, args):
    out = [f'.TH {name.upper()} 1 "" "veldrin\\-thumbnail {args.version}" "User commands"\n',
           f".SH NAME\n{name} \\- {roff(args.summary)}\n",
           f".SH SYNOPSIS\n.B {name}\n{roff(help_text.usage)}\n"]
    for heading, items in help_text.sections:
        out.append(f".SH {heading}\n")
        for before, item in zip([None] + items, items):
            if isinstance(before, Entry) and not isinstance(item, Entry):
                out.append(".PP\n")
            out.append(roff_item(item))
    return "".join(out)


def spellings(help_text):
    return [(name, entry) for entry in help_text.options for name, _ in entry.options]


def quoted(text):
    return "'" + text.replace("'", "'\\''") + "'"


def bash(name, help_text, args):
    cases = ""
    for spelling, entry in spellings(help_text):
        if entry.value:
            action = (f"COMPREPLY=($(compgen -W {quoted(' '.join(entry.words))} -- \"$word\"))"
                      if entry.words else "compopt -o default" if entry.takes_file else ":")
            cases += f"    {spelling}) {action}; return ;;\n"
    known = " ".join(spelling for spelling, _ in spellings(help_text))
    return f"""# bash completion for {name}
_{name}()
{{
    local word=${{COMP_WORDS[COMP_CWORD]}} file
    COMPREPLY=()
    case ${{COMP_WORDS[COMP_CWORD - 1]}} in
{cases}    esac
    if [[ $word == -* ]]; then
        COMPREPLY=($(compgen -W {quoted(known)} -- "$word"))
        return
    fi
    compopt -o filenames
    while IFS= read -r file; do
        if [[ -d $file || $file == {args.files} ]]; then
            COMPREPLY+=("$file")
        fi
    done < <(compgen -f -- "$word")
}}
complete -F _{name} {name}
"""


def zsh(name, help_text, args):
    rows = ""
    for spelling, entry in spellings(help_text):
        text = re.sub(r"([\[\]:\\])", r"\\\1", entry.summary)
        action = ""
        if entry.value:
            values = f"({' '.join(entry.words)})" if entry.words else "_files"
            name_of_value = re.sub(r"[^\w=]+", " ", entry.value).strip()
            action = f":{name_of_value}:" + (values if entry.words or entry.takes_file else " ")
        # A value stands behind a short option with or without a blank.
        plus = "+" if action and not spelling.startswith("--") else ""
        rows += f"    {quoted(f'*{spelling}{plus}[{text}]{action}')} \\\n"
    files = quoted(f'*:file:_files -g "{args.files}"')
    return f"#compdef {name}\n_arguments -s \\\n{rows}    {files}\n"


def fish(name, help_text, args):
    lines = [f"# fish completion for {name}"]
    for spelling, entry in spellings(help_text):
        name_of_option = spelling.lstrip("-")
        kind = "-l" if spelling.startswith("--") else "-s" if len(name_of_option) == 1 else "-o"
        line = f"complete -c {name} {kind} {name_of_option} -d {quoted(entry.summary)}"
        if entry.words:
            line += f" -x -a {quoted(' '.join(entry.words))}"
        elif entry.value:
            line += " -r" if entry.takes_file else " -x"
        lines.append(line)
    if args.files != "*":
        suffix = args.files.lstrip("*")
        lines.append(f"complete -c {name} -f -k -a '(__fish_complete_suffix {suffix})'")
    return "\n".join(lines) + "\n"


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--summary", required=True, help="what the program does, in a line")
    parser.add_argument("--files", default="*", help="pattern of the files that it takes")
    parser.add_argument("--version", required=True)
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("name")
    parser.add_argument("command", nargs=argparse.REMAINDER, help="prints the help")
    args = parser.parse_args()
    printed = subprocess.run(args.command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                             text=True, check=False).stdout
    if not printed.startswith("Usage: "):
        raise SystemExit(f"{' '.join(args.command)} printed no help:\n{printed}")
    help_text = Help(printed)
    for file, write in ((f"{args.name}.1", manual), (args.name, bash),
                        (f"_{args.name}", zsh), (f"{args.name}.fish", fish)):
        (args.folder / file).write_text(write(args.name, help_text, args), encoding="utf-8")


if __name__ == "__main__":
    main()
