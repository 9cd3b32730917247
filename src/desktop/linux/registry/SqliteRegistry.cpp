#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <optional>
#include <thread>
#include <utility>

#include "desktop/linux/LinuxDesktop.h"

namespace vesko {
namespace {

constexpr int kBusyMilliseconds = 5000;  // a save takes a few; who waits is a person
constexpr int kSchemaVersion = 1;

/// The root key is a row as well, so that it can have values. Identifiers are never used twice:
/// a handle of a deleted key finds nothing instead of another key.
constexpr char kSchema[] =
    "CREATE TABLE keys(id INTEGER PRIMARY KEY AUTOINCREMENT,"
    "  parent INTEGER REFERENCES keys(id), name TEXT NOT NULL COLLATE NOCASE,"
    "  UNIQUE(parent, name));"
    "INSERT INTO keys VALUES(1, NULL, '');"
    "CREATE TABLE entries(id INTEGER PRIMARY KEY,"
    "  key INTEGER NOT NULL REFERENCES keys(id) ON DELETE CASCADE,"
    "  name TEXT NOT NULL COLLATE NOCASE, type INTEGER NOT NULL, data BLOB NOT NULL,"
    "  UNIQUE(key, name));"
    "PRAGMA user_version=1;";

constexpr int64_t kRootRow = 1;

/// Every statement, in the order of kSql.
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

constexpr std::array<const char*, kSqlCount> kSql = {
    "SELECT id FROM keys WHERE parent=?1 AND name=?2",
    "INSERT INTO keys(parent, name) VALUES(?1, ?2) ON CONFLICT DO NOTHING",
    "SELECT type, data FROM entries WHERE key=?1 AND name=?2",
    "INSERT INTO entries(key, name, type, data) VALUES(?1, ?2, ?3, ?4)"
    " ON CONFLICT(key, name) DO UPDATE SET type=excluded.type, data=excluded.data",
    "SELECT name FROM keys WHERE parent=?1 ORDER BY name LIMIT 1 OFFSET ?2",
    "SELECT name FROM entries WHERE key=?1 ORDER BY id LIMIT 1 OFFSET ?2",
    "DELETE FROM keys WHERE id=?1",
    "DELETE FROM entries WHERE key=?1 AND name=?2",
    "SELECT 1 FROM keys WHERE id=?1",
};

int32_t StatusOf(int sqlite_code) {
  switch (sqlite_code & 0xFF) {
    case SQLITE_OK:
    case SQLITE_ROW:
    case SQLITE_DONE:
      return kStatusSuccess;
    case SQLITE_READONLY:
    case SQLITE_CANTOPEN:
    case SQLITE_PERM:
    case SQLITE_AUTH:
      return kStatusAccessDenied;
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return kStatusBusy;
    case SQLITE_FULL:
      return kStatusDiskFull;
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
    case SQLITE_ERROR:  // a table is missing or has another shape
      return kStatusRegistryCorrupt;
    default:
      return kStatusWriteFault;
  }
}

/// Creates a folder and those above it, for its owner only.
bool MakeFolders(const std::string& folder) {
  for (size_t end = folder.find('/', 1);; end = folder.find('/', end + 1)) {
    std::string part = folder.substr(0, end);
    if (mkdir(part.c_str(), 0700) != 0 && errno != EEXIST && end == std::string::npos) {
      return false;
    }
    if (end == std::string::npos) return true;
  }
}

/// Creates an empty file, for its owner only, where there is none. What belongs to it (log and
/// shared memory) is given the same access. One that is there is not opened: closing it again would
/// drop the locks of this process.
bool MakeFile(const std::string& path) {
  int file = open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  if (file < 0) return errno == EEXIST;
  close(file);
  return true;
}

/// Runs a step again while another process is making the hive: SQLite does not wait for a change
/// of the kind of log as it does for a write.
template <typename Step>
int32_t WaitingWhileBusy(Step&& step) {
  using Clock = std::chrono::steady_clock;
  const auto end = Clock::now() + std::chrono::milliseconds(kBusyMilliseconds);
  int32_t status = step();
  while (status == kStatusBusy && Clock::now() < end) {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    status = step();
  }
  return status;
}

/// Which file a path names, and which state of it.
struct FileState {
  dev_t device;
  ino_t inode;
  off_t size;
  int64_t modified;

  bool SameFile(const FileState& other) const {
    return device == other.device && inode == other.inode;
  }
  friend bool operator==(const FileState&, const FileState&) = default;
};

std::optional<FileState> StateOf(const std::string& path) {
  struct stat status;
  if (stat(path.c_str(), &status) != 0) return std::nullopt;
  return FileState{status.st_dev, status.st_ino, status.st_size,
                   int64_t{status.st_mtim.tv_sec} * 1'000'000'000 + status.st_mtim.tv_nsec};
}

/// A path as a name of a database file that nobody changes while it is open.
std::string ImmutableUri(const std::string& path) {
  std::string uri = "file:";
  for (char c : path) {
    if (c == '%' || c == '?' || c == '#') {
      constexpr char kHex[] = "0123456789abcdef";
      uri += '%';
      uri += kHex[static_cast<unsigned char>(c) >> 4];
      uri += kHex[c & 0xF];
    } else {
      uri += c;
    }
  }
  return uri + "?immutable=1";
}

/// One use of a prepared statement; leaves it ready for the next.
class Use {
 public:
  /// `statement` may be null: it could not be prepared, for the reason `code`.
  Use(sqlite3_stmt* statement, int code) : statement_(statement), code_(code) {}
  ~Use() {
    if (!statement_) return;
    sqlite3_reset(statement_);
    sqlite3_clear_bindings(statement_);
  }
  Use(const Use&) = delete;
  Use& operator=(const Use&) = delete;

  Use& Bind(int64_t number) {
    if (statement_) Note(sqlite3_bind_int64(statement_, ++bound_, number));
    return *this;
  }
  /// Bytes of any code page: kept as they are, compared without the case of the letters A to Z.
  Use& BindName(std::string_view name) {
    if (statement_) {
      Note(sqlite3_bind_text64(statement_, ++bound_, name.empty() ? "" : name.data(), name.size(),
                               SQLITE_STATIC, SQLITE_UTF8));
    }
    return *this;
  }
  Use& BindData(std::string_view data) {
    if (statement_) {
      Note(sqlite3_bind_blob64(statement_, ++bound_, data.empty() ? "" : data.data(), data.size(),
                               SQLITE_STATIC));
    }
    return *this;
  }

  /// SQLITE_ROW, SQLITE_DONE or what went wrong.
  int Step() { return code_ == SQLITE_OK ? sqlite3_step(statement_) : code_; }

  int64_t Number(int column) const { return sqlite3_column_int64(statement_, column); }
  std::string Bytes(int column) const {
    auto* data = static_cast<const char*>(sqlite3_column_blob(statement_, column));
    auto size = static_cast<size_t>(sqlite3_column_bytes(statement_, column));
    return data ? std::string(data, size) : std::string();
  }

 private:
  void Note(int code) {
    if (code_ == SQLITE_OK) code_ = code;
  }

  sqlite3_stmt* statement_;
  int code_;
  int bound_ = 0;
};

/// One hive: its file, the connection to it while there is one, and the open transaction.
/// Functions return status codes.
class Hive {
 public:
  explicit Hive(std::string folder) : folder_(std::move(folder)), path_(folder_ + "/registry.db") {}
  ~Hive() { Close(); }
  Hive(const Hive&) = delete;
  Hive& operator=(const Hive&) = delete;

  int32_t FindPath(std::string_view path, int64_t& id) {
    if (int32_t status = ForReading()) return status;
    id = kRootRow;
    while (!path.empty()) {
      if (int32_t status = FindChild(id, TakeName(path), id)) return status;
    }
    return kStatusSuccess;
  }

  int32_t MakePath(std::string_view path, int64_t& id) {
    if (int32_t status = ForWriting()) return status;
    id = kRootRow;
    while (!path.empty()) {
      std::string_view name = TakeName(path);
      int64_t parent = id;
      int32_t status = FindChild(parent, name, id);
      if (status == kStatusFileNotFound) status = AddChild(parent, name, id);
      if (status) return status;
    }
    return kStatusSuccess;
  }

  int32_t Query(int64_t key, std::string_view name, uint32_t& type, std::string& data) {
    if (int32_t status = ForReading()) return status;
    Use use = Prepared(kQuery);
    int32_t status = One(use.Bind(key).BindName(name), kStatusFileNotFound);
    if (status) return status;
    type = static_cast<uint32_t>(use.Number(0));
    data = use.Bytes(1);
    return kStatusSuccess;
  }

  int32_t Set(int64_t key, std::string_view name, uint32_t type, std::string_view data) {
    if (int32_t status = ForWriting()) return status;
    if (int32_t status = Alive(key)) return status;
    return Write(Prepared(kSet).Bind(key).BindName(name).Bind(type).BindData(data));
  }

  int32_t NthKey(int64_t key, uint32_t n, std::string& name) { return Nth(kNthKey, key, n, name); }
  int32_t NthValue(int64_t key, uint32_t n, std::string& name) {
    return Nth(kNthValue, key, n, name);
  }

  int32_t RemoveKey(std::string_view path) {
    int64_t id = 0;
    if (int32_t status = FindPath(path, id)) return status;
    if (id == kRootRow) return kStatusAccessDenied;
    if (int32_t status = ForWriting()) return status;
    std::string sub_key;
    if (NthKey(id, 0, sub_key) == kStatusSuccess) return kStatusAccessDenied;
    return Write(Prepared(kRemoveKey).Bind(id));
  }

  int32_t RemoveValue(int64_t key, std::string_view name) {
    uint32_t type = 0;
    std::string data;
    if (int32_t status = Query(key, name, type, data)) return status;
    if (int32_t status = ForWriting()) return status;
    return Write(Prepared(kRemoveValue).Bind(key).BindName(name));
  }

  void BeginTransaction() { ++depth_; }

  void EndTransaction() {
    if (--depth_ > 0) return;
    if (begun_ && (failure_ || Run("COMMIT") != SQLITE_OK)) Run("ROLLBACK");
    begun_ = false;
    failure_ = kStatusSuccess;
  }

 private:
  /// Cuts the first name off a path.
  static std::string_view TakeName(std::string_view& path) {
    size_t end = path.find('\\');
    std::string_view name = path.substr(0, end);
    path.remove_prefix(end == std::string_view::npos ? path.size() : end + 1);
    return name;
  }

  int32_t ForReading() {
    if (failure_) return failure_;
    DropStale();
    if (!connection_) {
      if (int32_t status = OpenForReading()) return status;
    }
    return BeginOnce("BEGIN");
  }

  int32_t ForWriting() {
    if (failure_) return failure_;
    DropStale();
    if (!connection_ || immutable_) {
      if (int32_t status = OpenForWriting()) return Failed(status);
    }
    return Failed(BeginOnce("BEGIN IMMEDIATE"));
  }

  /// The transaction starts with its first operation: until then there may be no file.
  int32_t BeginOnce(const char* begin) {
    if (depth_ == 0 || begun_) return kStatusSuccess;
    int code = Run(begin);
    begun_ = code == SQLITE_OK;
    return StatusOf(code);
  }

  /// What fails a write fails the whole transaction, lest half of it be stored. Returns its status.
  int32_t Failed(int32_t status) {
    if (depth_ > 0) failure_ = status;
    return status;
  }

  /// A file that was removed or replaced meanwhile must not swallow what is written.
  void DropStale() {
    if (!connection_ || begun_) return;
    auto now = StateOf(path_);
    if (!now || !now->SameFile(state_) || (immutable_ && *now != state_)) Close();
  }

  int32_t OpenForReading() {
    if (!StateOf(path_)) {
      return errno == EACCES ? kStatusAccessDenied : kStatusFileNotFound;
    }
    int32_t status = WaitingWhileBusy([this] { return Open(path_, SQLITE_OPEN_READWRITE); });
    // Without leave to write beside it, a hive with no log can be read only as it stands.
    if (status == kStatusAccessDenied) {
      status = Open(ImmutableUri(path_), SQLITE_OPEN_READONLY | SQLITE_OPEN_URI);
      immutable_ = true;
    }
    if (status) return status;
    int version = 0;
    status = Version(version);
    if (status == kStatusSuccess && version == kSchemaVersion) return kStatusSuccess;
    Close();
    if (status) return status;
    return version == 0 ? kStatusFileNotFound : kStatusRegistryCorrupt;
  }

  int32_t OpenForWriting() {
    Close();
    if (!MakeFolders(folder_) || !MakeFile(path_)) {
      return errno == ENOSPC || errno == EDQUOT ? kStatusDiskFull : kStatusAccessDenied;
    }
    return WaitingWhileBusy([this] {
      int32_t status = Open(path_, SQLITE_OPEN_READWRITE);
      if (!status) status = EnsureSchema();
      if (status) Close();
      return status;
    });
  }

  int32_t Open(const std::string& name, int flags) {
    Close();
    int code = sqlite3_open_v2(name.c_str(), &connection_, flags | SQLITE_OPEN_NOMUTEX, nullptr);
    if (code == SQLITE_OK) {
      sqlite3_busy_timeout(connection_, kBusyMilliseconds);
      // Erased passwords are overwritten, not only forgotten.
      code = Run("PRAGMA foreign_keys=ON; PRAGMA secure_delete=ON; PRAGMA synchronous=FULL;");
    }
    int version = 0;
    int32_t status = code == SQLITE_OK ? Version(version) : StatusOf(code);
    if (auto state = StateOf(path_)) state_ = *state;
    if (status) Close();
    return status;
  }

  /// Two processes may come here at once: the second finds all done.
  int32_t EnsureSchema() {
    int version = 0;
    if (int32_t status = Version(version)) return status;
    if (version == kSchemaVersion) return kStatusSuccess;
    if (version != 0) return kStatusRegistryCorrupt;
    Run("PRAGMA journal_mode=WAL");  // refused while the other one does it, which serves as well
    if (int code = Run("BEGIN IMMEDIATE"); code != SQLITE_OK) return StatusOf(code);
    int code = SQLITE_OK;
    int32_t status = Version(version);
    if (!status && version == 0) code = Run(kSchema);
    if (code == SQLITE_OK) code = Run("COMMIT");
    if (code != SQLITE_OK) Run("ROLLBACK");
    return status ? status : StatusOf(code);
  }

  int32_t Version(int& version) {
    sqlite3_stmt* statement = nullptr;
    int code = sqlite3_prepare_v2(connection_, "PRAGMA user_version", -1, &statement, nullptr);
    if (code == SQLITE_OK) code = sqlite3_step(statement);
    if (code == SQLITE_ROW) version = sqlite3_column_int(statement, 0);
    sqlite3_finalize(statement);
    return StatusOf(code);
  }

  void Close() {
    for (sqlite3_stmt*& statement : statements_) {
      sqlite3_finalize(statement);
      statement = nullptr;
    }
    sqlite3_close(connection_);
    connection_ = nullptr;
    immutable_ = begun_ = false;
  }

  int Run(const char* sql) { return sqlite3_exec(connection_, sql, nullptr, nullptr, nullptr); }

  Use Prepared(Sql sql) {
    sqlite3_stmt*& statement = statements_[sql];
    int code = SQLITE_OK;
    if (!statement) {
      code = sqlite3_prepare_v3(connection_, kSql[sql], -1, SQLITE_PREPARE_PERSISTENT, &statement,
                                nullptr);
    }
    return Use(statement, code);
  }

  /// Status of a statement that yields one row; `none` where it yields no row.
  static int32_t One(Use& use, int32_t none) {
    int code = use.Step();
    return code == SQLITE_DONE ? none : StatusOf(code);
  }

  int32_t Write(Use& use) { return Failed(StatusOf(use.Step())); }

  int32_t FindChild(int64_t parent, std::string_view name, int64_t& id) {
    Use use = Prepared(kFindKey);
    int32_t status = One(use.Bind(parent).BindName(name), kStatusFileNotFound);
    if (status == kStatusSuccess) id = use.Number(0);
    return status;
  }

  /// Another process may have added it a moment ago: that one counts.
  int32_t AddChild(int64_t parent, std::string_view name, int64_t& id) {
    if (int32_t status = Write(Prepared(kAddKey).Bind(parent).BindName(name))) return status;
    return FindChild(parent, name, id);
  }

  int32_t Alive(int64_t key) {
    Use use = Prepared(kKeyAlive);
    return One(use.Bind(key), kStatusKeyDeleted);
  }

  int32_t Nth(Sql sql, int64_t key, uint32_t n, std::string& name) {
    int32_t status = ForReading();
    if (status == kStatusFileNotFound) return kStatusNoMoreItems;  // no hive yet
    if (status) return status;
    Use use = Prepared(sql);
    status = One(use.Bind(key).Bind(n), kStatusNoMoreItems);
    if (status == kStatusSuccess) name = use.Bytes(0);
    return status;
  }

  std::string folder_;
  std::string path_;
  sqlite3* connection_ = nullptr;
  bool immutable_ = false;
  FileState state_{};  // of the file that is open
  std::array<sqlite3_stmt*, kSqlCount> statements_{};
  int depth_ = 0;  // of nested transactions
  bool begun_ = false;
  int32_t failure_ = kStatusSuccess;  // of the transaction
};

class HiveTransaction : public RegistryTransaction {
 public:
  explicit HiveTransaction(Hive& hive) : hive_(hive) { hive_.BeginTransaction(); }
  ~HiveTransaction() override { hive_.EndTransaction(); }

 private:
  Hive& hive_;
};

/// A key handle is the row of the key with the number of its hive above it: nothing to keep, so
/// nothing to close.
constexpr int kHiveShift = 56;

class SqliteRegistry : public Registry {
 public:
  SqliteRegistry(const std::string& user_folder, const std::string& machine_folder)
      : user_(user_folder), machine_(machine_folder) {}

  int32_t OpenKey(int32_t root, std::string_view path, uint32_t, KeyHandle& key) override {
    return Located(root, path, key, &Hive::FindPath);
  }

  int32_t CreateKey(int32_t root, std::string_view path, KeyHandle& key) override {
    return Located(root, path, key, &Hive::MakePath);
  }

  void CloseKey(KeyHandle) override {}

  int32_t QueryValue(KeyHandle key, std::string_view name, uint32_t& type,
                     std::string& data) override {
    Hive* hive = HiveOf(key);
    return hive ? hive->Query(RowOf(key), name, type, data) : kStatusInvalidHandle;
  }

  int32_t SetValue(KeyHandle key, std::string_view name, uint32_t type,
                   std::string_view data) override {
    Hive* hive = HiveOf(key);
    if (!hive) return kStatusInvalidHandle;
    if (!IsName(name)) return kStatusInvalidParameter;
    return hive->Set(RowOf(key), name, type, data);
  }

  int32_t EnumKey(KeyHandle key, uint32_t index, std::string& name) override {
    Hive* hive = HiveOf(key);
    return hive ? hive->NthKey(RowOf(key), index, name) : kStatusInvalidHandle;
  }

  int32_t EnumValue(KeyHandle key, uint32_t index, std::string& name) override {
    Hive* hive = HiveOf(key);
    return hive ? hive->NthValue(RowOf(key), index, name) : kStatusInvalidHandle;
  }

  int32_t DeleteKey(int32_t root, std::string_view path) override {
    Hive* hive = HiveOf(root);
    return hive ? hive->RemoveKey(path) : kStatusInvalidHandle;
  }

  int32_t DeleteValue(KeyHandle key, std::string_view name) override {
    Hive* hive = HiveOf(key);
    return hive ? hive->RemoveValue(RowOf(key), name) : kStatusInvalidHandle;
  }

  std::unique_ptr<RegistryTransaction> BeginTransaction(int32_t root) override {
    Hive* hive = HiveOf(root);
    if (!hive) return std::make_unique<RegistryTransaction>();
    return std::make_unique<HiveTransaction>(*hive);
  }

  std::string ExpandEnvironment(std::string_view text) override;

 private:
  static bool IsName(std::string_view name) { return name.find('\0') == std::string_view::npos; }
  static int64_t RowOf(KeyHandle key) {
    return static_cast<int64_t>(key & ((KeyHandle{1} << kHiveShift) - 1));
  }

  Hive* HiveOf(int32_t root) {
    return root == kCurrentUser ? &user_ : root == kLocalMachine ? &machine_ : nullptr;
  }
  Hive* HiveOf(KeyHandle key) {
    KeyHandle number = key >> kHiveShift;
    return number == 1 ? &user_ : number == 2 ? &machine_ : nullptr;
  }

  int32_t Located(int32_t root, std::string_view path, KeyHandle& key,
                  int32_t (Hive::*locate)(std::string_view, int64_t&)) {
    Hive* hive = HiveOf(root);
    if (!hive) return kStatusInvalidHandle;
    if (!IsName(path)) return kStatusInvalidParameter;
    int64_t row = 0;
    int32_t status = (hive->*locate)(path, row);
    if (status) return status;
    key = (KeyHandle{hive == &user_ ? 1u : 2u} << kHiveShift) | static_cast<KeyHandle>(row);
    return kStatusSuccess;
  }

  Hive user_;
  Hive machine_;
};

std::string SqliteRegistry::ExpandEnvironment(std::string_view text) {
  std::string expanded;
  size_t begin = 0;
  for (size_t percent; (percent = text.find('%', begin)) != std::string_view::npos;) {
    expanded += text.substr(begin, percent - begin);
    size_t end = text.find('%', percent + 1);
    begin = percent;
    if (end == std::string_view::npos) break;
    std::string name(text.substr(percent + 1, end - percent - 1));
    const char* value = name.empty() ? nullptr : std::getenv(name.c_str());
    // What is no reference stays, but for its last percent sign, which may begin one.
    expanded += value ? value : text.substr(percent, end - percent);
    begin = value ? end + 1 : end;
  }
  return expanded.append(text.substr(begin));
}

}  // namespace

std::unique_ptr<Registry> MakeSqliteRegistry(const std::string& user_folder,
                                             const std::string& machine_folder) {
  return std::make_unique<SqliteRegistry>(user_folder, machine_folder);
}

}  // namespace vesko
