#include "Table.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <utility>

namespace vesko {
namespace {

constexpr int kNameWidth = 38;
constexpr int kLeastWidth = 10;
constexpr int kDigits = 3;

int Width(const std::string& heading) {
  return std::max(kLeastWidth, static_cast<int>(heading.size()));
}

std::string Rounded(double figure) {
  if (std::isnan(figure)) return "-";
  const double size = std::abs(figure);
  const int whole = size < 1 ? 1 : static_cast<int>(std::floor(std::log10(size))) + 1;
  char text[64];
  std::snprintf(text, sizeof text, "%.*f", std::max(0, kDigits - whole), figure);
  return text;
}

}  // namespace

double NoFigure() { return std::numeric_limits<double>::quiet_NaN(); }

Table::Table(const std::string& title, const std::string& name, std::vector<std::string> figures)
    : headings_(std::move(figures)) {
  if (!title.empty()) std::printf("%s\n\n", title.c_str());
  int total = std::printf("%-*s", kNameWidth, name.c_str());
  for (const std::string& heading : headings_) {
    total += std::printf("  %*s", Width(heading), heading.c_str());
  }
  std::printf("\n%s\n", std::string(static_cast<size_t>(total), '-').c_str());
  std::fflush(stdout);
}

void Table::Add(const std::string& name, const std::vector<double>& figures) {
  std::printf("%-*s", kNameWidth, name.c_str());
  for (size_t i = 0; i < std::min(figures.size(), headings_.size()); ++i) {
    std::printf("  %*s", Width(headings_[i]), Rounded(figures[i]).c_str());
  }
  std::printf("\n");
  std::fflush(stdout);
}

}  // namespace vesko
