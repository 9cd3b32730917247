#pragma once

#include <sqlite3.h>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "desktop/linux/registry/HiveFile.h"
#include "desktop/linux/registry/Patience.h"
#include "desktop/linux/registry/Statement.h"
#include "platform/Registry.h"

namespace vesko {

/// One hive: its file, the connection to it while there is one, and the open transaction. Keys are
/// rows. Operations return the status codes of Registry and do what its operations of like names
/// do.
class Hive {
 public:
  /// `patience` is shared with other hives and must outlive this one.
  Hive(const std::string& folder, Patience& patience) : file_(folder), patience_(patience) {}
  ~Hive() { Close(); }
  Hive(const Hive&) = delete;
  Hive& operator=(const Hive&) = delete;

  /// The row of a key; the empty path is the root. MakePath adds what is missing of the path.
  int32_t FindPath(std::string_view path, int64_t& row);
  int32_t MakePath(std::string_view path, int64_t& row);

  /// The root and keys with sub-keys cannot be removed: kStatusAccessDenied.
  int32_t RemoveKey(std::string_view path);

  /// Sub-keys are counted from 0 by name.
  int32_t NthKey(int64_t key, uint32_t n, std::string& name);

  /// Values of a key. To set one, the key must still exist, or kStatusKeyDeleted.
  int32_t Query(int64_t key, std::string_view name, uint32_t& type, std::string& data);
  int32_t Set(int64_t key, std::string_view name, uint32_t type, std::string_view data);
  int32_t RemoveValue(int64_t key, std::string_view name);
  int32_t NthValue(int64_t key, uint32_t n, std::string& name);

  /// As RegistryTransaction says. A transaction starts on the file with its first operation: until
  /// then there may be no file. Each Begin needs its End; Commit stores, End alone drops.
  void BeginTransaction(TransactionKind kind);
  int32_t Commit();
  void EndTransaction();

 private:
  /// Every statement, in the order of their texts.
  enum Sql : size_t {
    kFindKey,
    kAddKey,
    kQuery,
    kSet,
    kNthKey,
    kNthValue,
    kRemoveKey,
    kRemoveValue,
    kKeyAlive,
    kSqlCount,
  };
  static const std::array<const char*, kSqlCount> kSql;

  /// To be called before the statements of an operation: they open the file where it is not open,
  /// and begin the transaction on it where one is due.
  int32_t ForReading();
  int32_t ForWriting();
  int32_t PrepareRead();
  int32_t PrepareWrite();
  int32_t BeginOnce(const char* begin);

  /// Both keep what the status says of the transaction, and return it. The second is for what a
  /// statement returned, with which the hive has answered.
  int32_t Noted(int32_t status);
  int32_t Answered(int32_t status);

  /// The file: what was replaced is closed; what is missing is kStatusFileNotFound for a reader
  /// and created for a writer.
  void DropStale();
  int32_t OpenForReading();
  int32_t OpenForWriting();
  int32_t Open(const std::string& name, int flags);
  int32_t EnsureSchema();
  int32_t Version(int& version);
  void Close();

  /// Waiting for other processes. False where there is no use in more of it.
  bool Wait();
  template <typename Step>
  int32_t WaitWhileBusy(Step&& step);

  int Run(const char* sql) { return sqlite3_exec(connection_, sql, nullptr, nullptr, nullptr); }
  /// One use of a statement, which is prepared the first time and kept until the file is closed.
  Statement Prepared(Sql sql);
  int32_t Write(Statement& statement);
  /// The row of a key's sub-key by its name; kStatusFileNotFound where there is none.
  int32_t FindChild(int64_t parent, std::string_view name, int64_t& row);
  int32_t AddChild(int64_t parent, std::string_view name, int64_t& row);
  /// kStatusKeyDeleted where another handle or process has removed the key.
  int32_t Alive(int64_t key);
  int32_t Nth(Sql sql, int64_t key, uint32_t n, std::string& name);

  HiveFile file_;
  Patience& patience_;
  sqlite3* connection_ = nullptr;
  std::array<sqlite3_stmt*, kSqlCount> statements_{};

  /// Of the file that is open.
  FileState state_;

  /// Open as it stands, without its log and for reading only.
  bool immutable_ = false;

  /// Waited for in vain, and it has not answered since.
  bool gave_up_ = false;

  /// Of the transaction, and how many are nested. It fails as a whole, with the first failure.
  int depth_ = 0;
  TransactionKind kind_ = TransactionKind::kRead;
  bool begun_ = false;
  int32_t failure_ = kStatusSuccess;
};

}  // namespace vesko
