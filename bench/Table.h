#pragma once

#include <string>
#include <vector>

namespace vesko {

/// Stands for a figure that a row does not have; shown as "-".
double NoFigure();

/// A table of figures on standard output: a column of names, then a column for each figure, under a
/// heading that names its unit. Headings are printed at once and each row as it is added, so that a
/// long run shows its progress. One title a program and few columns: a person reads it.
class Table {
 public:
  /// The title may be empty. `name` heads the column of names, `figures` the others.
  Table(const std::string& title, const std::string& name, std::vector<std::string> figures);

  /// Adds a row; figures are rounded to three digits that count, whole ones from 100 on. Missing
  /// figures at the end are left empty.
  void Add(const std::string& name, const std::vector<double>& figures);

 private:
  std::vector<std::string> headings_;
};

}  // namespace vesko
