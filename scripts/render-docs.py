#!/usr/bin/python3
"""Renders the Markdown documents of docs/ as HTML pages for the program's help folder.

Usage: render-docs.py OUTPUT_FOLDER DOCUMENT.md...

Each DOCUMENT.md becomes OUTPUT_FOLDER/DOCUMENT.html (guide.md becomes index.html), with links between
the documents pointing at their pages. Needs Debian's python3-markdown.
"""
import html
import os
import re
import sys

import markdown

PAGE = """<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<title>{title} - QorloMANAGER</title>
<style>
body {{ font-family: sans-serif; max-width: 58em; margin: 1em auto; padding: 0 1em; line-height: 1.45;
        color: #1b1b1b; }}
h1, h2, h3 {{ color: #1d4f8f; }}
code, pre {{ font-family: monospace; background: #f2f4f7; }}
pre {{ padding: 0.6em; overflow-x: auto; }}
table {{ border-collapse: collapse; margin: 0.6em 0; }}
th, td {{ border: 1px solid #c9d3e0; padding: 0.25em 0.5em; text-align: left; vertical-align: top; }}
th {{ background: #e8eef6; }}
img {{ max-width: 100%; border: 1px solid #c9d3e0; }}
nav {{ font-size: 0.9em; border-bottom: 1px solid #c9d3e0; padding-bottom: 0.3em; }}
</style>
</head>
<body>
<nav><a href="index.html">Operator's guide</a> | <a href="report-format.html">Report files</a> |
<a href="formulas.html">Formulas</a> | <a href="multirun-files.html">Multi-run files</a></nav>
{body}
</body>
</html>
"""


def page_name(document):
    base = os.path.splitext(os.path.basename(document))[0]
    return "index.html" if base == "guide" else base + ".html"


def render(document, names):
    with open(document, encoding="utf-8") as source:
        text = source.read()
    heading = re.search(r"^# (.+)$", text, re.MULTILINE)
    title = heading.group(1) if heading else os.path.basename(document)
    body = markdown.markdown(text, extensions=["tables", "fenced_code", "toc"])
    # Links to the other documents point at their pages, anchors kept.
    for markdown_name, html_name in names.items():
        body = body.replace('href="%s' % markdown_name, 'href="%s' % html_name)
    return PAGE.format(title=html.escape(title), body=body)


def main():
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    output, documents = sys.argv[1], sys.argv[2:]
    os.makedirs(output, exist_ok=True)
    names = {os.path.basename(d): page_name(d) for d in documents}
    for document in documents:
        page = render(document, names)
        target = os.path.join(output, page_name(document))
        with open(target + ".part", "w", encoding="utf-8") as out:
            out.write(page)
        os.replace(target + ".part", target)


if __name__ == "__main__":
    main()
