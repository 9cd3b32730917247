#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace vesko {

/// One use of a prepared statement: its parameters are bound in their order, it is stepped, and its
/// end leaves it ready for the next use. What goes wrong on the way comes out at Step.
class Statement {
 public:
  /// The statement is not owned and must outlive the use. It may be null: then it could not be
  /// prepared, for the reason `code`.
  Statement(sqlite3_stmt* statement, int code) : statement_(statement), code_(code) {}
  ~Statement() {
    if (!statement_) return;
    sqlite3_reset(statement_);
    sqlite3_clear_bindings(statement_);
  }
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;

  /// Each gives the next parameter its value. Names and data are not copied and must outlive the
  /// use.
  Statement& Bind(int64_t number) {
    if (statement_) Note(sqlite3_bind_int64(statement_, ++bound_, number));
    return *this;
  }
  /// Bytes of any code page: kept as they are, compared without the case of the letters A to Z.
  Statement& BindName(std::string_view name) {
    if (statement_) {
      Note(sqlite3_bind_text64(statement_, ++bound_, name.empty() ? "" : name.data(), name.size(),
                               SQLITE_STATIC, SQLITE_UTF8));
    }
    return *this;
  }
  /// Any bytes.
  Statement& BindData(std::string_view data) {
    if (statement_) {
      Note(sqlite3_bind_blob64(statement_, ++bound_, data.empty() ? "" : data.data(), data.size(),
                               SQLITE_STATIC));
    }
    return *this;
  }

  /// SQLITE_ROW where there is a row, SQLITE_DONE where there is none or no more, or the first
  /// thing that went wrong.
  int Step() { return code_ == SQLITE_OK ? sqlite3_step(statement_) : code_; }

  /// Columns of the row that Step reached, counted from 0. Precondition: there is one.
  int64_t Number(int column) const { return sqlite3_column_int64(statement_, column); }
  std::string Bytes(int column) const {
    auto* data = static_cast<const char*>(sqlite3_column_blob(statement_, column));
    auto size = static_cast<size_t>(sqlite3_column_bytes(statement_, column));
    return data ? std::string(data, size) : std::string();
  }

 private:
  /// Keeps the first thing that goes wrong.
  void Note(int code) {
    if (code_ == SQLITE_OK) code_ = code;
  }

  sqlite3_stmt* statement_;
  int code_;
  int bound_ = 0;
};

}  // namespace vesko
