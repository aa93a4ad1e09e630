// A chart of lines over a logarithmic axis, as SVG.
#pragma once

#include <string>
#include <utility>
#include <vector>

struct Series {
  std::string name;
  std::vector<std::pair<double, double>> points;  ///< x and seconds, x ascending
};

struct Chart {
  std::string title;
  std::string across;                                 ///< what x is
  std::vector<std::pair<double, std::string>> marks;  ///< of the axis of x
  bool logarithmic;                                   ///< whether the axis of seconds is; else it begins at 0
  std::vector<Series> series;                         ///< at most four; the first one stands out
};

/// Writes it for light and dark backgrounds.
void WriteChart(const std::string& name, const Chart& chart);
