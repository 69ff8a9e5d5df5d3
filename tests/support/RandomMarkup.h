// Documents of pieces that mean something to a parser, put together by chance.
#pragma once

#include <iterator>
#include <random>
#include <string>

namespace kbx::test {

/// HTML that is rarely well-formed.
inline std::string randomHTML(std::mt19937& random) {
  static const char* const kPieces[] = {
      "<p>",
      "</p>",
      "<script>",
      "</script>",
      "<noframes>",
      "</noframes>",
      "<head>",
      "<title>",
      "</title>",
      "text ",
      "é",
      "&amp;",
      "&#13;",
      " ",
      "  \n",
      "<!-- c -->",
      "<svg>",
      "</svg>",
      "<table>",
      "<tr>",
      "<td>",
      "</td>",
      "</table>",
      "<pre>",
      "</pre>",
      "\n",
      "<br>",
      "<b>",
      "</b>",
      "<?p?>",
      "<x:y>",
      "<style>",
      "</style>",
      "<li>",
      "<ul>",
      "</ul>",
      "<math><mi>",
      "</math>",
      "<textarea>",
      "</textarea>",
      "<hr>",
      "<div a='b' a=c>",
      "</div>",
      "<body>",
      "</body>",
      "<foreignObject>",
      "<select>",
      "<option>",
      "<![CDATA[x]]>",
      "<h1>",
      "</h2>",
      "<a href=x>",
      "</a>",
      "<form>",
      "<unknown>",
      "</unknown>",
      "<frameset>",
      "<noscript>",
      "</noscript>",
      "<html lang=x>",
      "x",
      "&nbsp;",
      "&#32;",
      "<",
      "&",
      "<title/>",
      "<object>",
      "</object>",
      "<button>",
      "<caption>",
      "<dd>",
      "<plaintext>",
  };
  std::string html;
  for (std::size_t count = random() % 40; count > 0; --count)
    html += kPieces[random() % (std::size(kPieces) - (random() % 8 ? 1 : 0))];
  return html + "z";
}

/// A well-formed element with what is inside.
inline std::string randomXML(std::mt19937& random, int depth = 0) {
  static const char* const kNames[] = {"head", "script", "noframes", "p",     "b",     "html",
                                       "body", "table",  "td",       "title", "style", "svg"};
  static const char* const kTexts[] = {"text ", " ", "&amp;", "&#13;",  "<!-- c -->",   "<?p d?>",
                                       "é",     "",  "\n",    "&#160;", "<![CDATA[<]]>"};
  static const char* const kSpaces[] = {"",
                                        "",
                                        "",
                                        " xmlns='http://www.w3.org/1999/xhtml'",
                                        " xmlns=''",
                                        " xmlns='urn:x' k='v'",
                                        " xmlns='http://www.w3.org/2000/svg'"};
  const bool isRoot = depth == 0;
  const std::string name = isRoot ? "html" : kNames[random() % std::size(kNames)];
  std::string xml = "<" + name + kSpaces[isRoot ? 2 + random() % 2 : random() % std::size(kSpaces)];
  xml += ">";
  for (std::size_t count = random() % 4 + (isRoot ? 1 : 0); count > 0 && depth < 6; --count) {
    xml += kTexts[random() % std::size(kTexts)];
    xml += randomXML(random, depth + 1);
    xml += kTexts[random() % std::size(kTexts)];
  }
  return xml + "</" + name + ">";
}

}  // namespace kbx::test
