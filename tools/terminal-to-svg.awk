# Lines of a terminal as an SVG: one <text> a line, light on dark. For awk with LC_ALL=C; a line's
# columns are its bytes less those that go on with a UTF-8 character.

function escaped(text) {
  gsub(/&/, "\\&amp;", text)
  gsub(/</, "\\&lt;", text)
  gsub(/>/, "\\&gt;", text)
  return text
}

function columns(text) {
  gsub(/[\200-\277]/, "", text)
  return length(text)
}

{ lines[NR] = $0 }

END {
  column = 8.4; row = 20; margin = 16
  width = 80 * column + 2 * margin
  height = NR * row + 2 * margin
  printf "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 %d %d\">\n", width, height
  printf "<rect width=\"%d\" height=\"%d\" rx=\"6\" fill=\"#1d2027\"/>\n", width, height
  print "<g fill=\"#d8dee9\" font-size=\"14\" xml:space=\"preserve\""
  print "   font-family=\"ui-monospace, Menlo, Consolas, 'DejaVu Sans Mono', monospace\">"
  for (i = 1; i <= NR; ++i) {
    if (lines[i] == "") continue
    printf "<text x=\"%d\" y=\"%d\" textLength=\"%.1f\">%s</text>\n", margin,
      margin + i * row - 5, columns(lines[i]) * column, escaped(lines[i])
  }
  print "</g>\n</svg>"
}
