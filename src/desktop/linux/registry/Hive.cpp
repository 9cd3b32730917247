#include "desktop/linux/registry/Hive.h"

#include <cerrno>

namespace vesko {
namespace {

constexpr int kSchemaVersion = 1;
constexpr int64_t kRootRow = 1;

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

/// Status of a statement that yields one row; `none` where it yields no row.
int32_t One(Statement& statement, int32_t none) {
  const int code = statement.Step();
  return code == SQLITE_DONE ? none : StatusOf(code);
}

/// Cuts the first name off a path.
std::string_view TakeName(std::string_view& path) {
  const size_t end = path.find('\\');
  const std::string_view name = path.substr(0, end);
  path.remove_prefix(end == std::string_view::npos ? path.size() : end + 1);
  return name;
}

}  // namespace

const std::array<const char*, Hive::kSqlCount> Hive::kSql = {
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

int32_t Hive::FindPath(std::string_view path, int64_t& row) {
  if (int32_t status = ForReading()) return status;
  row = kRootRow;
  while (!path.empty()) {
    if (int32_t status = FindChild(row, TakeName(path), row)) return status;
  }
  return kStatusSuccess;
}

int32_t Hive::MakePath(std::string_view path, int64_t& row) {
  if (int32_t status = ForWriting()) return status;
  row = kRootRow;
  while (!path.empty()) {
    const std::string_view name = TakeName(path);
    const int64_t parent = row;
    int32_t status = FindChild(parent, name, row);
    if (status == kStatusFileNotFound) status = AddChild(parent, name, row);
    if (status) return status;
  }
  return kStatusSuccess;
}

int32_t Hive::RemoveKey(std::string_view path) {
  int64_t row = 0;
  if (int32_t status = FindPath(path, row)) return status;
  if (row == kRootRow) return kStatusAccessDenied;
  if (int32_t status = ForWriting()) return status;
  std::string sub_key;
  const int32_t status = NthKey(row, 0, sub_key);
  if (status != kStatusNoMoreItems) return status ? status : kStatusAccessDenied;
  Statement statement = Prepared(kRemoveKey);
  return Write(statement.Bind(row));
}

int32_t Hive::NthKey(int64_t key, uint32_t n, std::string& name) {
  return Nth(kNthKey, key, n, name);
}

int32_t Hive::Query(int64_t key, std::string_view name, uint32_t& type, std::string& data) {
  if (int32_t status = ForReading()) return status;
  Statement statement = Prepared(kQuery);
  const int32_t status = Answered(One(statement.Bind(key).BindName(name), kStatusFileNotFound));
  if (status) return status;
  type = static_cast<uint32_t>(statement.Number(0));
  data = statement.Bytes(1);
  return kStatusSuccess;
}

int32_t Hive::Set(int64_t key, std::string_view name, uint32_t type, std::string_view data) {
  if (int32_t status = ForWriting()) return status;
  if (int32_t status = Alive(key)) return status;
  Statement statement = Prepared(kSet);
  return Write(statement.Bind(key).BindName(name).Bind(type).BindData(data));
}

int32_t Hive::RemoveValue(int64_t key, std::string_view name) {
  uint32_t type = 0;
  std::string data;
  if (int32_t status = Query(key, name, type, data)) return status;
  if (int32_t status = ForWriting()) return status;
  Statement statement = Prepared(kRemoveValue);
  return Write(statement.Bind(key).BindName(name));
}

int32_t Hive::NthValue(int64_t key, uint32_t n, std::string& name) {
  return Nth(kNthValue, key, n, name);
}

void Hive::BeginTransaction(TransactionKind kind) {
  if (depth_++ == 0) kind_ = kind;
  patience_.Enter();
}

int32_t Hive::Commit() {
  if (depth_ > 1) return failure_;
  int32_t status = failure_;
  if (!status && begun_) status = StatusOf(Run("COMMIT"));
  if (status && begun_) Run("ROLLBACK");
  begun_ = false;
  failure_ = kStatusSuccess;
  return status;
}

void Hive::EndTransaction() {
  patience_.Leave();
  if (--depth_ > 0) return;
  if (begun_) Run("ROLLBACK");
  begun_ = false;
  failure_ = kStatusSuccess;
}

int32_t Hive::ForReading() {
  if (depth_ > 0 && kind_ == TransactionKind::kWrite) return ForWriting();
  if (failure_) return failure_;
  patience_.BeginOperation();
  return Noted(PrepareRead());
}

int32_t Hive::ForWriting() {
  if (failure_) return failure_;
  patience_.BeginOperation();
  return Noted(PrepareWrite());
}

int32_t Hive::PrepareRead() {
  DropStale();
  if (!connection_) {
    if (int32_t status = OpenForReading()) return status;
  }
  return BeginOnce("BEGIN");
}

int32_t Hive::PrepareWrite() {
  DropStale();
  if (!connection_ || immutable_) {
    if (int32_t status = OpenForWriting()) return status;
  }
  return BeginOnce("BEGIN IMMEDIATE");
}

int32_t Hive::BeginOnce(const char* begin) {
  int code = SQLITE_OK;
  if (depth_ > 0 && !begun_) {
    code = Run(begin);
    begun_ = code == SQLITE_OK;
  }
  return StatusOf(code);
}

/// What fails an operation fails the whole transaction, lest half of it be read or stored; that
/// something does not exist is no failure.
int32_t Hive::Noted(int32_t status) {
  const bool failed = status != kStatusSuccess && status != kStatusFileNotFound &&
                      status != kStatusNoMoreItems && status != kStatusKeyDeleted;
  if (failed && depth_ > 0) failure_ = status;
  return status;
}

int32_t Hive::Answered(int32_t status) {
  if (status != kStatusBusy) gave_up_ = false;
  return Noted(status);
}

/// A file that was removed or replaced meanwhile must not swallow what is written.
void Hive::DropStale() {
  if (!connection_ || begun_) return;
  const auto now = StateOf(file_.Path());
  if (!now || !now->SameFile(state_) || (immutable_ && *now != state_)) Close();
}

int32_t Hive::OpenForReading() {
  if (!StateOf(file_.Path())) return errno == EACCES ? kStatusAccessDenied : kStatusFileNotFound;
  file_.CloseToOthers();
  int32_t status = WaitWhileBusy([this] { return Open(file_.Path(), SQLITE_OPEN_READWRITE); });
  // Without leave to write beside it, a hive with no log can be read only as it stands.
  if (status == kStatusAccessDenied) {
    status = Open(file_.ImmutableUri(), SQLITE_OPEN_READONLY | SQLITE_OPEN_URI);
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

int32_t Hive::OpenForWriting() {
  Close();
  if (!file_.Create()) {
    return errno == ENOSPC || errno == EDQUOT ? kStatusDiskFull : kStatusAccessDenied;
  }
  file_.CloseToOthers();
  return WaitWhileBusy([this] {
    int32_t status = Open(file_.Path(), SQLITE_OPEN_READWRITE);
    if (!status) status = EnsureSchema();
    if (status) Close();
    return status;
  });
}

int32_t Hive::Open(const std::string& name, int flags) {
  Close();
  int code = sqlite3_open_v2(name.c_str(), &connection_, flags | SQLITE_OPEN_NOMUTEX, nullptr);
  if (code == SQLITE_OK) {
    const auto wait = [](void* hive, int) { return static_cast<Hive*>(hive)->Wait() ? 1 : 0; };
    sqlite3_busy_handler(connection_, wait, this);
    // Erased passwords are overwritten, not only forgotten.
    code = Run("PRAGMA foreign_keys=ON; PRAGMA secure_delete=ON; PRAGMA synchronous=FULL;");
  }
  int version = 0;
  const int32_t status = code == SQLITE_OK ? Version(version) : StatusOf(code);
  if (auto state = StateOf(file_.Path())) state_ = *state;
  if (status) Close();
  return status;
}

/// Two processes may come here at once: the second one finds all done.
int32_t Hive::EnsureSchema() {
  int version = 0;
  if (int32_t status = Version(version)) return status;
  if (version == kSchemaVersion) return kStatusSuccess;
  if (version != 0) return kStatusRegistryCorrupt;
  Run("PRAGMA journal_mode=WAL");  // refused while the other one does it, which serves as well
  if (int code = Run("BEGIN IMMEDIATE"); code != SQLITE_OK) return StatusOf(code);
  int code = SQLITE_OK;
  const int32_t status = Version(version);
  if (!status && version == 0) code = Run(kSchema);
  if (code == SQLITE_OK) code = Run("COMMIT");
  if (code != SQLITE_OK) Run("ROLLBACK");
  return status ? status : StatusOf(code);
}

int32_t Hive::Version(int& version) {
  sqlite3_stmt* statement = nullptr;
  int code = sqlite3_prepare_v2(connection_, "PRAGMA user_version", -1, &statement, nullptr);
  if (code == SQLITE_OK) code = sqlite3_step(statement);
  if (code == SQLITE_ROW) version = sqlite3_column_int(statement, 0);
  sqlite3_finalize(statement);
  return StatusOf(code);
}

void Hive::Close() {
  for (sqlite3_stmt*& statement : statements_) {
    sqlite3_finalize(statement);
    statement = nullptr;
  }
  sqlite3_close(connection_);
  connection_ = nullptr;
  immutable_ = begun_ = false;
}

/// A hive that was waited for in vain is not waited for again until it has answered: whoever asks
/// it for one thing after the other would wait five seconds for each.
bool Hive::Wait() {
  if (!gave_up_) gave_up_ = !patience_.Wait();
  return !gave_up_;
}

/// Runs a step again while another process is making the hive: SQLite does not wait for a change
/// of the kind of log as it does for a write.
template <typename Step>
int32_t Hive::WaitWhileBusy(Step&& step) {
  int32_t status = step();
  while (status == kStatusBusy && Wait()) status = step();
  return status;
}

Statement Hive::Prepared(Sql sql) {
  sqlite3_stmt*& statement = statements_[sql];
  int code = SQLITE_OK;
  if (!statement) {
    code = sqlite3_prepare_v3(connection_, kSql[sql], -1, SQLITE_PREPARE_PERSISTENT, &statement,
                              nullptr);
  }
  return Statement(statement, code);
}

int32_t Hive::Write(Statement& statement) { return Answered(StatusOf(statement.Step())); }

int32_t Hive::FindChild(int64_t parent, std::string_view name, int64_t& row) {
  Statement statement = Prepared(kFindKey);
  const int32_t status = One(statement.Bind(parent).BindName(name), kStatusFileNotFound);
  if (status == kStatusSuccess) row = statement.Number(0);
  return Answered(status);
}

/// Another process may have added it a moment ago: that one counts.
int32_t Hive::AddChild(int64_t parent, std::string_view name, int64_t& row) {
  Statement statement = Prepared(kAddKey);
  if (int32_t status = Write(statement.Bind(parent).BindName(name))) return status;
  return FindChild(parent, name, row);
}

int32_t Hive::Alive(int64_t key) {
  Statement statement = Prepared(kKeyAlive);
  return Answered(One(statement.Bind(key), kStatusKeyDeleted));
}

int32_t Hive::Nth(Sql sql, int64_t key, uint32_t n, std::string& name) {
  int32_t status = ForReading();
  if (status == kStatusFileNotFound) return kStatusNoMoreItems;  // no hive yet
  if (status) return status;
  Statement statement = Prepared(sql);
  status = One(statement.Bind(key).Bind(n), kStatusNoMoreItems);
  if (status == kStatusSuccess) name = statement.Bytes(0);
  return Answered(status);
}

}  // namespace vesko
