# Draws docs/performance.svg: time against size for each scaling series, both axes logarithmic, and
# the ratios of the table as bars. Reads the two files that bench/run gathers: series (series, size,
# milliseconds), then rows (title, ours, against, ratio, "at least" or "at most", reach).

function log10(x) { return log(x) / log(10) }
function text(x, y, anchor, size, content) {
  gsub(/&/, "\\&amp;", content); gsub(/</, "\\&lt;", content)
  printf "<text x=\"%.1f\" y=\"%.1f\" text-anchor=\"%s\" font-size=\"%d\">%s</text>\n", x, y, anchor, size, content
}
function line(x1, y1, x2, y2, colour, more) {
  printf "<line x1=\"%.1f\" y1=\"%.1f\" x2=\"%.1f\" y2=\"%.1f\" stroke=\"%s\" %s/>\n", x1, y1, x2, y2, colour, more
}
function plot_x(size) { return LEFT + (log10(size) - low_x) / (high_x - low_x) * PLOT_WIDTH }
function plot_y(time) { return TOP + PLOT_HEIGHT - (log10(time) - low_y) / (high_y - low_y) * PLOT_HEIGHT }

function draw_axes(   decade, i, n, sizes) {
  n = split("6000 15000 30000 60000 100000", sizes, " ")
  for (i = 1; i <= n; ++i) {
    line(plot_x(sizes[i]), TOP, plot_x(sizes[i]), TOP + PLOT_HEIGHT, "#ddd", "")
    text(plot_x(sizes[i]), TOP + PLOT_HEIGHT + 16, "middle", 11, sizes[i])
  }
  for (decade = low_y; decade <= high_y; ++decade) {
    line(LEFT, plot_y(10 ^ decade), LEFT + PLOT_WIDTH, plot_y(10 ^ decade), "#ddd", "")
    text(LEFT - 6, plot_y(10 ^ decade) + 4, "end", 11, sprintf("%g ms", 10 ^ decade))
  }
}
function ceiling(x) { return int(x) + (x > int(x)) }
function flooring(x) { return -ceiling(-x) }

function draw_series(   s, i, n, points, size, time, y) {
  for (s = 1; s <= series_count; ++s) {
    n = split(points_of[s], points, " ")
    printf "<polyline fill=\"none\" stroke=\"%s\" stroke-width=\"2\" points=\"", COLOUR[s]
    for (i = 1; i < n; i += 2) {
      printf "%.1f,%.1f ", plot_x(points[i]), plot_y(points[i + 1])
    }
    print "\"/>"
    y = TOP + 14 * s
    line(LEFT + PLOT_WIDTH + 16, y - 4, LEFT + PLOT_WIDTH + 36, y - 4, COLOUR[s], "stroke-width=\"2\"")
    text(LEFT + PLOT_WIDTH + 42, y, "start", 11, series_name[s])
  }
}

function draw_bars(   r, y, width, mark, colour) {
  text(10, BARS_TOP - 14, "start", 13, "Each ratio as a share of its reach (the line): at least = right of it, at most = left of it")
  for (r = 1; r <= row_count; ++r) {
    y = BARS_TOP + (r - 1) * BAR_STEP
    mark = BAR_WIDTH / 2
    width = ratio[r] / reach[r] * mark
    width = width > BAR_WIDTH ? BAR_WIDTH : width < 1 ? 1 : width
    colour = (sense[r] == "at least" ? ratio[r] >= reach[r] : ratio[r] <= reach[r]) ? "#4a8" : "#c64"
    text(BARS_LEFT - 8, y + 12, "end", 11, title[r])
    printf "<rect x=\"%d\" y=\"%.1f\" width=\"%.1f\" height=\"15\" fill=\"%s\"/>\n", BARS_LEFT, y, width, colour
    text(BARS_LEFT + BAR_WIDTH + 10, y + 12, "start", 11, ratio[r] ", " sense[r] " " reach[r])
  }
  line(BARS_LEFT + BAR_WIDTH / 2, BARS_TOP - 6, BARS_LEFT + BAR_WIDTH / 2, y + 20, "#333", "stroke-dasharray=\"4 3\"")
}

BEGIN {
  LEFT = 80; TOP = 40; PLOT_WIDTH = 600; PLOT_HEIGHT = 360
  BARS_TOP = 490; BARS_LEFT = 430; BAR_WIDTH = 260; BAR_STEP = 22
  split("#1f77b4 #ff7f0e #2ca02c #d62728 #9467bd #8c564b #e377c2 #7f7f7f #17becf #bcbd22", COLOUR, " ")
  low_x = low_y = 99; high_x = high_y = -99
}
NF == 3 {
  if (!($1 in index_of)) {
    index_of[$1] = ++series_count
    series_name[series_count] = $1
  }
  points_of[index_of[$1]] = points_of[index_of[$1]] $2 " " $3 " "
  if (log10($2) < low_x) low_x = log10($2)
  if (log10($2) > high_x) high_x = log10($2)
  if (flooring(log10($3)) < low_y) low_y = flooring(log10($3))
  if (ceiling(log10($3)) > high_y) high_y = ceiling(log10($3))
}
NF > 3 && $4 != "" {
  ++row_count
  title[row_count] = $1; ratio[row_count] = $4; sense[row_count] = $5; reach[row_count] = $6
}
END {
  height = BARS_TOP + row_count * BAR_STEP + 20
  printf "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 860 %d\" font-family=\"sans-serif\">\n", height
  printf "<rect width=\"860\" height=\"%d\" fill=\"white\"/>\n", height
  if (series_count > 0) {
    text(LEFT, 22, "start", 13, "Time against size; a straight line as steep as the dashed one is linear cost")
    draw_axes()
    guide = 10 ^ (high_x - low_x)
    line(plot_x(10 ^ low_x), plot_y(10 ^ low_y), plot_x(10 ^ high_x), plot_y(10 ^ low_y * guide), "#999", "stroke-dasharray=\"5 4\"")
    draw_series()
  }
  if (row_count > 0) {
    draw_bars()
  }
  print "</svg>"
}
