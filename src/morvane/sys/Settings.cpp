#include <morvane/sys/Settings.h>

#include <morvane/model/Json.h>
#include <morvane/sys/App.h>
#include <morvane/sys/Files.h>
#include <morvane/sys/Log.h>

#include <sqlite3.h>

#include <ctime>
#include <functional>
#include <mutex>

namespace morvane::sys {
namespace fs = std::filesystem;

namespace {

// How a value is kept: texts as they are, everything else as JSON text.
enum StoredKind : int { kText = 0, kJson = 1 };

bool isDamage(int code) {
    code &= 0xff;
    return code == SQLITE_CORRUPT || code == SQLITE_NOTADB;
}

struct Statement {
    sqlite3_stmt* handle = nullptr;
    ~Statement() { sqlite3_finalize(handle); }
};

} // namespace

struct Settings::Impl {
    fs::path file;
    mutable std::mutex mutex;
    sqlite3* db = nullptr;
    bool inMemory = false;

    ~Impl() { close(); }

    void close() {
        if (db) sqlite3_close_v2(db);
        db = nullptr;
    }

    std::string lastError() const { return db ? sqlite3_errmsg(db) : "cannot open"; }

    int exec(const char* sql) { return sqlite3_exec(db, sql, nullptr, nullptr, nullptr); }

    // Opens the database and checks it. Returns SQLITE_OK, or the code that
    // says why not.
    int tryOpen(const std::string& name, int flags) {
        close();
        int code = sqlite3_open_v2(name.c_str(), &db, flags, nullptr);
        if (code != SQLITE_OK) return code;
        sqlite3_extended_result_codes(db, 1);
        sqlite3_busy_timeout(db, 5000);
        // Write-ahead logging: a commit appends to the log, so a writer killed
        // mid-save leaves the database as of its last commit. FULL flushes the
        // log at every commit, so a save that returned survives a power cut
        // too; in WAL mode that is one flush per save, cheap enough for
        // settings.
        if ((code = exec("PRAGMA journal_mode=WAL")) != SQLITE_OK) return code;
        if ((code = exec("PRAGMA synchronous=FULL")) != SQLITE_OK) return code;
        Statement check;
        code = sqlite3_prepare_v2(db, "PRAGMA quick_check", -1, &check.handle, nullptr);
        if (code != SQLITE_OK) return code;
        code = sqlite3_step(check.handle);
        if (code != SQLITE_ROW) return code;
        auto* verdict = reinterpret_cast<const char*>(sqlite3_column_text(check.handle, 0));
        if (!verdict || std::string_view(verdict) != "ok") return SQLITE_CORRUPT;
        return exec("CREATE TABLE IF NOT EXISTS settings ("
                    "key TEXT PRIMARY KEY NOT NULL, kind INTEGER NOT NULL, data TEXT NOT NULL)");
    }

    void moveAside(const std::string& reason) {
        close();
        char stamp[32];
        time_t now = time(nullptr);
        struct tm utc {};
        gmtime_r(&now, &utc);
        strftime(stamp, sizeof stamp, "%Y%m%dT%H%M%S", &utc);
        fs::path aside = file;
        aside += std::string(".damaged-") + stamp;
        std::error_code error;
        fs::rename(file, aside, error);
        // The log belongs to the damaged file; keep it with it for a post-mortem.
        fs::path wal = file, asideWal = aside, shm = file;
        wal += "-wal";
        asideWal += "-wal";
        shm += "-shm";
        fs::rename(wal, asideWal, error);
        fs::remove(shm, error);
        Log::platform("The settings store " + file.string() + " was damaged (" + reason + "); moved it to " +
                      aside.string() + " and started a fresh one");
    }

    void open() {
        Files::createFolder(file.parent_path());
        const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
        int code = tryOpen(file.string(), flags);
        if (isDamage(code)) {
            moveAside(lastError());
            code = tryOpen(file.string(), flags);
        }
        if (code != SQLITE_OK) {
            Log::platform("Cannot open the settings store " + file.string() + " (" + lastError() +
                          "); keeping settings in memory for this run");
            inMemory = true;
            tryOpen(":memory:", flags | SQLITE_OPEN_MEMORY);
        }
    }

    // Runs one operation; a store found damaged on the way is replaced and the
    // operation tried once more on the fresh one.
    int run(const std::function<int()>& operation) {
        if (!db) return SQLITE_CANTOPEN;
        int code = operation();
        if (isDamage(code) && !inMemory) {
            moveAside(lastError());
            open();
            if (!db) return SQLITE_CANTOPEN;
            code = operation();
        }
        return code;
    }

    bool save(std::string_view key, int kind, std::string_view data) {
        std::lock_guard lock(mutex);
        int code = run([&] {
            Statement statement;
            int code = sqlite3_prepare_v2(
                db,
                "INSERT INTO settings(key, kind, data) VALUES(?1, ?2, ?3) "
                "ON CONFLICT(key) DO UPDATE SET kind = excluded.kind, data = excluded.data",
                -1, &statement.handle, nullptr);
            if (code != SQLITE_OK) return code;
            sqlite3_bind_text(statement.handle, 1, key.data(), int(key.size()), SQLITE_TRANSIENT);
            sqlite3_bind_int(statement.handle, 2, kind);
            sqlite3_bind_text(statement.handle, 3, data.data(), int(data.size()), SQLITE_TRANSIENT);
            code = sqlite3_step(statement.handle);
            return code == SQLITE_DONE ? SQLITE_OK : code;
        });
        if (code != SQLITE_OK)
            Log::platform("Cannot save the setting \"" + std::string(key) + "\": " + lastError());
        return code == SQLITE_OK;
    }

    struct Stored {
        int kind;
        std::string data;
    };

    std::optional<Stored> load(std::string_view key) {
        std::lock_guard lock(mutex);
        std::optional<Stored> result;
        run([&] {
            Statement statement;
            int code = sqlite3_prepare_v2(db, "SELECT kind, data FROM settings WHERE key = ?1", -1,
                                          &statement.handle, nullptr);
            if (code != SQLITE_OK) return code;
            sqlite3_bind_text(statement.handle, 1, key.data(), int(key.size()), SQLITE_TRANSIENT);
            code = sqlite3_step(statement.handle);
            if (code == SQLITE_ROW) {
                auto* data = reinterpret_cast<const char*>(sqlite3_column_text(statement.handle, 1));
                int size = sqlite3_column_bytes(statement.handle, 1);
                result = Stored{sqlite3_column_int(statement.handle, 0),
                                std::string(data ? data : "", size_t(size))};
                return SQLITE_OK;
            }
            return code == SQLITE_DONE ? SQLITE_OK : code;
        });
        return result;
    }
};

std::shared_ptr<Settings> Settings::standard() {
    // Never destroyed: other threads may still save while the program exits.
    static auto* mutex = new std::mutex;
    static auto* store = new std::shared_ptr<Settings>;
    fs::path file = App::dataFolder() / "Settings.sqlite";
    std::lock_guard lock(*mutex);
    if (!*store || (*store)->file() != file) *store = std::make_shared<Settings>(file);
    return *store;
}

Settings::Settings(fs::path file) : impl_(std::make_unique<Impl>()) {
    impl_->file = std::move(file);
    std::lock_guard lock(impl_->mutex);
    impl_->open();
}

Settings::~Settings() = default;

const fs::path& Settings::file() const {
    return impl_->file;
}

bool Settings::setText(std::string_view key, std::string_view text) {
    return impl_->save(key, kText, text);
}

bool Settings::setValue(std::string_view key, const Value& value) {
    if (value.isAbsent()) return remove(key);
    if (const std::string* text = value.text()) return setText(key, *text);
    if (value.isObject()) {
        // A colour or a callback has no stored form; storing it would silently lose it.
        Log::platform("Cannot save the setting \"" + std::string(key) + "\": the value cannot be stored");
        return false;
    }
    return impl_->save(key, kJson, json::write(value));
}

bool Settings::remove(std::string_view key) {
    std::lock_guard lock(impl_->mutex);
    int code = impl_->run([&] {
        Statement statement;
        int code = sqlite3_prepare_v2(impl_->db, "DELETE FROM settings WHERE key = ?1", -1, &statement.handle,
                                      nullptr);
        if (code != SQLITE_OK) return code;
        sqlite3_bind_text(statement.handle, 1, key.data(), int(key.size()), SQLITE_TRANSIENT);
        code = sqlite3_step(statement.handle);
        return code == SQLITE_DONE ? SQLITE_OK : code;
    });
    return code == SQLITE_OK;
}

std::optional<std::string> Settings::text(std::string_view key) const {
    auto stored = impl_->load(key);
    if (!stored || stored->kind != kText) return std::nullopt;
    return std::move(stored->data);
}

Value Settings::value(std::string_view key) const {
    auto stored = impl_->load(key);
    if (!stored) return {};
    if (stored->kind == kText) return Value(std::move(stored->data));
    auto result = json::read(stored->data);
    if (!result)
        Log::platform("The setting \"" + std::string(key) + "\" cannot be read: " + result.error->describe());
    return result.value;
}

std::vector<std::string> Settings::keys() const {
    std::lock_guard lock(impl_->mutex);
    std::vector<std::string> result;
    impl_->run([&] {
        result.clear();
        Statement statement;
        int code = sqlite3_prepare_v2(impl_->db, "SELECT key FROM settings ORDER BY key", -1,
                                      &statement.handle, nullptr);
        if (code != SQLITE_OK) return code;
        while ((code = sqlite3_step(statement.handle)) == SQLITE_ROW)
            result.emplace_back(reinterpret_cast<const char*>(sqlite3_column_text(statement.handle, 0)));
        return code == SQLITE_DONE ? SQLITE_OK : code;
    });
    return result;
}

} // namespace morvane::sys
