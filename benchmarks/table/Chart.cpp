#include "Chart.h"

#include <algorithm>
#include <cmath>
#include <fstream>

#include "Measuring.h"
#include "Report.h"

namespace {

constexpr double kWidth = 760;
constexpr double kHeight = 430;
constexpr double kLeft = 72;
constexpr double kRight = kWidth - 118;
constexpr double kTop = 56;
constexpr double kBottom = kHeight - 56;

constexpr char kStyle[] = R"(<style>
  .paper { fill: #ffffff } .grid { stroke: #d8dee4 } .axis { stroke: #6e7781 }
  text { font: 13px system-ui, -apple-system, "Segoe UI", "DejaVu Sans", sans-serif; fill: #424a53 }
  .title { font-size: 16px; font-weight: 600; fill: #1f2328 } .name { font-weight: 600 }
  .line { fill: none; stroke-width: 2 } .s0.line { stroke-width: 3.5 }
  .s0.line { stroke: #0969da } .s1.line { stroke: #bc4c00 } .s2.line { stroke: #1a7f37 } .s3.line { stroke: #8250df }
  .s0.dot { fill: #0969da } .s1.dot { fill: #bc4c00 } .s2.dot { fill: #1a7f37 } .s3.dot { fill: #8250df }
  .s0.name { fill: #0969da } .s1.name { fill: #bc4c00 } .s2.name { fill: #1a7f37 } .s3.name { fill: #8250df }
  @media (prefers-color-scheme: dark) {
    .paper { fill: #0d1117 } .grid { stroke: #30363d } .axis { stroke: #8b949e }
    text { fill: #c9d1d9 } .title { fill: #f0f6fc }
    .s0.line { stroke: #58a6ff } .s1.line { stroke: #f0883e } .s2.line { stroke: #3fb950 } .s3.line { stroke: #bc8cff }
    .s0.dot, .s0.name { fill: #58a6ff } .s1.dot, .s1.name { fill: #f0883e }
    .s2.dot, .s2.name { fill: #3fb950 } .s3.dot, .s3.name { fill: #bc8cff }
  }
</style>
)";

/// A range of values, drawn between two places.
class Scale {
 public:
  Scale(double low, double high, double from, double to, bool logarithmic)
      : low_(low), high_(high), from_(from), to_(to), logarithmic_(logarithmic) {}
  double operator()(double value) const {
    const double part =
        logarithmic_ ? std::log(value / low_) / std::log(high_ / low_) : (value - low_) / (high_ - low_);
    return from_ + part * (to_ - from_);
  }
  /// Powers of ten, or steps of 1, 2 or 5 times one.
  std::vector<double> Marks() const {
    std::vector<double> marks;
    const double power = std::pow(10, std::floor(std::log10(high_ / 4)));
    const double step = high_ / power > 20 ? 5 * power : high_ / power > 8 ? 2 * power : power;
    for (double mark = low_; mark <= high_ * 1.001; mark = logarithmic_ ? mark * 10 : mark + step)
      marks.push_back(mark);
    return marks;
  }

 private:
  double low_;
  double high_;
  double from_;
  double to_;
  bool logarithmic_;
};

/// A time without digits behind the point where there are none.
std::string MarkText(double seconds, double scale) {
  if (seconds == 0) return "0";
  const std::string text = TimeText(seconds, scale);
  const std::size_t space = text.find(' ');
  std::string number = text.substr(0, space);
  if (number.find('.') != std::string::npos) number.erase(number.find_last_not_of('0') + 1);
  if (number.back() == '.') number.pop_back();
  return number + text.substr(space);
}

std::string At(const char* x, double left, const char* y, double top) {
  return std::string(" ") + x + "=\"" + std::to_string(std::lround(left)) + "\" " + y + "=\"" +
         std::to_string(std::lround(top)) + "\"";
}

void Write(std::ofstream& out, const char* attributes, double x, double y, const std::string& text) {
  out << "<text " << attributes << At("x", x, "y", y) << '>' << text << "</text>\n";
}

void WriteLine(std::ofstream& out, const char* kind, double x1, double y1, double x2, double y2) {
  out << "<line class=\"" << kind << '"' << At("x1", x1, "y1", y1) << At("x2", x2, "y2", y2) << "/>\n";
}

Scale ScaleOfSeconds(const Chart& chart) {
  double low = 1e9;
  double high = 0;
  for (const Series& series : chart.series) {
    for (const auto& [x, seconds] : series.points) {
      low = std::min(low, seconds);
      high = std::max(high, seconds);
    }
  }
  if (!chart.logarithmic) return {0, high * 1.1, kBottom, kTop, false};
  return {std::pow(10, std::floor(std::log10(low))), std::pow(10, std::ceil(std::log10(high))), kBottom, kTop, true};
}

/// The heights of the names behind the lines, moved apart where lines end close together.
std::vector<double> NamePlaces(const std::vector<double>& ends) {
  std::vector<std::size_t> order(ends.size());
  for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
  std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return ends[a] < ends[b]; });
  std::vector<double> places = ends;
  for (std::size_t i = 1; i < order.size(); ++i) {
    places[order[i]] = std::max(places[order[i]], places[order[i - 1]] + 17);
  }
  return places;
}

}  // namespace

void WriteChart(const std::string& name, const Chart& chart) {
  const Scale x(chart.marks.front().first, chart.marks.back().first, kLeft, kRight, true);
  const Scale y = ScaleOfSeconds(chart);
  std::ofstream out(name);
  out << "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 " << kWidth << ' ' << kHeight << "\" width=\""
      << kWidth << "\" height=\"" << kHeight << "\">\n<title>" << chart.title << "</title>\n"
      << kStyle << "<rect class=\"paper\" width=\"100%\" height=\"100%\" rx=\"6\"/>\n";
  Write(out, "class=\"title\"", kLeft, 30, chart.title);
  for (const double mark : y.Marks()) {
    WriteLine(out, "grid", kLeft, y(mark), kRight, y(mark));
    Write(out, "text-anchor=\"end\"", kLeft - 8, y(mark) + 4,
          MarkText(mark, chart.logarithmic ? mark * 1.001 : y.Marks().back()));
  }
  for (const auto& [value, text] : chart.marks) {
    WriteLine(out, "axis", x(value), kBottom, x(value), kBottom + 5);
    Write(out, "text-anchor=\"middle\"", x(value), kBottom + 21, text);
  }
  WriteLine(out, "axis", kLeft, kBottom, kRight, kBottom);
  Write(out, "text-anchor=\"middle\"", (kLeft + kRight) / 2, kHeight - 14, chart.across);
  std::vector<double> ends;
  for (std::size_t i = chart.series.size(); i-- > 0;) {
    const std::string number = "s" + std::to_string(i);
    std::string dots;
    out << "<polyline class=\"line " << number << "\" points=\"";
    for (const auto& [value, seconds] : chart.series[i].points) {
      out << std::lround(x(value)) << ',' << std::lround(y(seconds)) << ' ';
      dots += "<circle class=\"dot " + number + "\" r=\"4\"" + At("cx", x(value), "cy", y(seconds)) + "/>\n";
    }
    out << "\"/>\n" << dots;
    ends.insert(ends.begin(), y(chart.series[i].points.back().second));
  }
  const std::vector<double> places = NamePlaces(ends);
  for (std::size_t i = 0; i < chart.series.size(); ++i) {
    Write(out, ("class=\"name s" + std::to_string(i) + "\"").c_str(), kRight + 12, places[i] + 4, chart.series[i].name);
  }
  out << "</svg>\n";
  Expect(out.flush().good(), name + ": cannot be written");
}
