#!/usr/bin/env python3
"""Writes bodies of mail for the benchmarks: html_bodies.py FOLDER.

Two styles in four sizes: a newsletter (nested tables, long style attributes) and a word processor's
(spans with styles, conditional comments, prefixed elements). The same bytes every time.
"""
import pathlib
import random
import sys

SIZES = {"2K": 2_000, "20K": 20_000, "200K": 200_000, "2M": 2_000_000}
WORDS = """the message of a newsletter is not long and has few letters beyond ASCII but some such as
naïve café Straße Łódź; offers end on Friday at noon, reply to unsubscribe or read it in a browser
organiser document folder attribute index search result invoice receipt total amount order number
delivery address thank you for your purchase see below""".split()

NEWSLETTER_HEAD = """<!DOCTYPE html PUBLIC "-//W3C//DTD XHTML 1.0 Transitional//EN" \
"http://www.w3.org/TR/xhtml1/DTD/xhtml1-transitional.dtd">
<html xmlns="http://www.w3.org/1999/xhtml"><head>
<meta http-equiv="Content-Type" content="text/html; charset=utf-8"><title>News</title>
<style type="text/css">body{margin:0} .x{color:#333;font-size:12px}</style></head><body>
"""
NEWSLETTER_PART = """<table width="600" cellpadding="0" cellspacing="0" border="0" align="center" \
style="border-collapse:collapse; mso-table-lspace:0pt;">
  <tr>
    <td align="left" valign="top" style="padding:0 20px 10px 20px; font-family:Arial,sans-serif; \
font-size:14px; line-height:20px; color:#333333;">
      <a href="https://example.com/click?id={number}&amp;u=1" style="color:#0066cc;" \
target="_blank"><strong>{title}</strong></a><br>
      {first}&nbsp;&ndash; {second}
      <img src="https://example.com/{number}.png" width="1" height="1" alt="">
    </td>
    <td>{number}</td>
  </tr>
</table>
"""
PROCESSOR_HEAD = """<html xmlns:o="urn:schemas-microsoft-com:office:office"><head>
<meta charset="utf-8"><style><!-- p.MsoNormal{margin:0cm} --></style>
<!--[if gte mso 9]><xml><o:x v:ext="edit"/></xml><![endif]--></head>
<body lang=EN-US link=blue><div class=WordSection1>
"""
PROCESSOR_PART = """<p class=MsoNormal style='margin-bottom:12.0pt;text-align:justify'><span \
lang=EN-US
style='font-size:11.0pt;font-family:"Calibri",sans-serif;color:#1F497D'>{first}<o:p></o:p></span>\
</p>

<p class=MsoListParagraph style='text-indent:-18.0pt;mso-list:l0 level1 lfo1'>\
<![if !supportLists]><span
style='mso-list:Ignore'>&#8226;<span style='font:7.0pt "Times New Roman"'>&nbsp;&nbsp; \
</span></span><![endif]><b>{title}</b>
{second} {number}</p>

"""


def words(chance, count):
    lines, line = [], ""
    for _ in range(count):
        line += (" " if line else "") + chance.choice(WORDS)
        if len(line) > 72:
            lines.append(line)
            line = ""
    return "\n".join(lines + [line])


def body(head, part, tail, size):
    chance = random.Random(1)
    text = head
    while len(text) < size - len(tail):
        text += part.format(number=chance.randrange(10_000), title=words(chance, 4),
                            first=words(chance, 25), second=words(chance, 20))
    return text + tail


def main():
    folder = pathlib.Path(sys.argv[1])
    folder.mkdir(parents=True, exist_ok=True)
    for name, size in SIZES.items():
        for style, text in (
            ("newsletter", body(NEWSLETTER_HEAD, NEWSLETTER_PART, "</body></html>", size)),
            ("processor", body(PROCESSOR_HEAD, PROCESSOR_PART, "</div></body></html>", size)),
        ):
            (folder / f"{style}-{name}.html").write_text(text)


main()
