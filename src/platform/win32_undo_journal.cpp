#ifdef _WIN32
#include "platform/win32_undo_journal.h"

#include <windows.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>

namespace braxcfg::platform {
namespace {

constexpr REGSAM kAccess = KEY_ALL_ACCESS | KEY_WOW64_64KEY;
constexpr const char* kJournalsPath = "SOFTWARE\\braxcfg\\Journal";
constexpr char kRestoreValues = 'V';
constexpr char kDeleteKey = 'D';

// A key opened below root for the journal's own use; root itself when the
// path is empty.
class Key {
public:
    Key(HKEY root, const std::string& path, bool create) {
        if (path.empty()) {
            key_ = root;
            return;
        }
        const LONG rc = create ? RegCreateKeyExA(root, path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, kAccess,
                                                 nullptr, &key_, nullptr)
                               : RegOpenKeyExA(root, path.c_str(), 0, kAccess, &key_);
        if (rc != ERROR_SUCCESS) key_ = nullptr;
        owned_ = key_ != nullptr;
    }
    ~Key() {
        if (owned_) RegCloseKey(key_);
    }
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;
    HKEY get() const { return key_; }

private:
    HKEY key_ = nullptr;
    bool owned_ = false;
};

struct SavedValue {
    std::string name;
    DWORD type = REG_NONE;
    std::string data;
};

// Every value of the key, in enumeration order.
std::vector<SavedValue> readValues(HKEY key) {
    std::vector<SavedValue> values;
    DWORD maxName = 0, maxData = 0;
    if (RegQueryInfoKeyA(key, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &maxName, &maxData,
                         nullptr, nullptr) != ERROR_SUCCESS)
        return values;
    std::string name(maxName + 1, '\0');
    std::string data(maxData + 1, '\0');
    for (DWORD i = 0;; ++i) {
        DWORD cchName = static_cast<DWORD>(name.size()), cbData = static_cast<DWORD>(data.size()), type = 0;
        if (RegEnumValueA(key, i, name.data(), &cchName, nullptr, &type, reinterpret_cast<BYTE*>(data.data()),
                          &cbData) != ERROR_SUCCESS)
            break;
        values.push_back({name.substr(0, cchName), type, data.substr(0, cbData)});
    }
    return values;
}

// Writes the bytes exactly: a text value stored without its terminator must
// not gain one, which the registry adds when the byte after the data is NUL.
void writeValue(HKEY key, const SavedValue& value) {
    std::string bytes = value.data;
    bytes.push_back('\x01');
    RegSetValueExA(key, value.name.c_str(), 0, value.type, reinterpret_cast<const BYTE*>(bytes.data()),
                   static_cast<DWORD>(value.data.size()));
}

void clearValues(HKEY key) {
    for (const SavedValue& value : readValues(key)) RegDeleteValueA(key, value.name.c_str());
}

void putNumber(std::string& out, std::uint32_t n) { out.append(reinterpret_cast<const char*>(&n), sizeof n); }
void putText(std::string& out, const std::string& text) {
    putNumber(out, static_cast<std::uint32_t>(text.size()));
    out += text;
}

class Reader {
public:
    explicit Reader(const std::string& bytes) : bytes_(bytes) {}
    bool number(std::uint32_t& n) {
        if (bytes_.size() - at_ < sizeof n) return false;
        std::memcpy(&n, bytes_.data() + at_, sizeof n);
        at_ += sizeof n;
        return true;
    }
    bool text(std::string& out) {
        std::uint32_t n = 0;
        if (!number(n) || bytes_.size() - at_ < n) return false;
        out = bytes_.substr(at_, n);
        at_ += n;
        return true;
    }

private:
    const std::string& bytes_;
    std::size_t at_ = 1;  // after the kind byte
};

std::string restoreEntry(const std::string& keyPath, const std::vector<SavedValue>& values) {
    std::string entry(1, kRestoreValues);
    putText(entry, keyPath);
    putNumber(entry, static_cast<std::uint32_t>(values.size()));
    for (const SavedValue& value : values) {
        putText(entry, value.name);
        putNumber(entry, value.type);
        putText(entry, value.data);
    }
    return entry;
}

void replay(HKEY root, const std::string& entry) {
    if (entry.empty()) return;
    Reader in(entry);
    std::string path;
    if (!in.text(path)) return;
    if (entry[0] == kDeleteKey) {
        RegDeleteKeyExA(root, path.c_str(), KEY_WOW64_64KEY, 0);
        return;
    }
    std::vector<SavedValue> values;
    std::uint32_t count = 0;
    if (entry[0] != kRestoreValues || !in.number(count)) return;
    for (std::uint32_t i = 0; i < count; ++i) {
        SavedValue value;
        std::uint32_t type = 0;
        if (!in.text(value.name) || !in.number(type) || !in.text(value.data)) return;
        value.type = type;
        values.push_back(std::move(value));
    }
    Key key(root, path, true);
    if (!key.get()) return;
    clearValues(key.get());
    for (const SavedValue& value : values) writeValue(key.get(), value);
}

std::string entryName(std::uint32_t number) {
    char name[16];
    std::snprintf(name, sizeof name, "%08u", number);
    return name;
}

// Replays the entries numbered `from` and up, newest first, and removes them.
void replayFrom(HKEY root, const std::string& journalPath, std::uint32_t from) {
    Key journal(root, journalPath, false);
    if (!journal.get()) return;
    std::vector<SavedValue> entries = readValues(journal.get());
    std::sort(entries.begin(), entries.end(), [](const SavedValue& a, const SavedValue& b) { return a.name > b.name; });
    for (const SavedValue& entry : entries) {
        if (std::strtoul(entry.name.c_str(), nullptr, 10) < from) continue;
        replay(root, entry.data);
        RegDeleteValueA(journal.get(), entry.name.c_str());
    }
}

std::string upperCased(std::string text) {
    for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return text;
}

// Removes a journal, then its parents while they are empty, so a store
// whose writers all finished shows no trace of them.
void removeJournal(HKEY root, const std::string& journalPath) {
    RegDeleteKeyExA(root, journalPath.c_str(), KEY_WOW64_64KEY, 0);
    RegDeleteKeyExA(root, kJournalsPath, KEY_WOW64_64KEY, 0);
    RegDeleteKeyExA(root, "SOFTWARE\\braxcfg", KEY_WOW64_64KEY, 0);
}

bool processAlive(DWORD pid) {
    HANDLE process = OpenProcess(SYNCHRONIZE, FALSE, pid);
    if (!process) return GetLastError() != ERROR_INVALID_PARAMETER;  // exists, but not ours to open
    const bool alive = WaitForSingleObject(process, 0) == WAIT_TIMEOUT;
    CloseHandle(process);
    return alive;
}

}  // namespace

UndoJournal::UndoJournal(HKEY__* root)
    : root_(root), journalPath_(std::string(kJournalsPath) + "\\" + std::to_string(GetCurrentProcessId())) {}

RegResult UndoJournal::beginScope() {
    if (scopes_.empty()) {
        Key journal(root_, journalPath_, true);
        if (!journal.get()) return ERROR_ACCESS_DENIED;
    }
    scopes_.push_back({nextEntry_, {}});
    return ERROR_SUCCESS;
}

RegResult UndoJournal::commitScope() {
    if (scopes_.empty()) return ERROR_INVALID_PARAMETER;
    Scope done = std::move(scopes_.back());
    scopes_.pop_back();
    if (!scopes_.empty()) {
        // The enclosing scope now owns these records, and with them the
        // keys they saved.
        scopes_.back().savedKeys.merge(done.savedKeys);
        return ERROR_SUCCESS;
    }
    nextEntry_ = 0;
    removeJournal(root_, journalPath_);
    return ERROR_SUCCESS;
}

void UndoJournal::rollbackScope() {
    if (scopes_.empty()) return;
    replayFrom(root_, journalPath_, scopes_.back().firstEntry);
    nextEntry_ = scopes_.back().firstEntry;
    scopes_.pop_back();
    if (scopes_.empty()) removeJournal(root_, journalPath_);
}

RegResult UndoJournal::record(const std::string& entry) {
    Key journal(root_, journalPath_, true);
    if (!journal.get()) return ERROR_ACCESS_DENIED;
    const LONG rc = RegSetValueExA(journal.get(), entryName(nextEntry_).c_str(), 0, REG_BINARY,
                                   reinterpret_cast<const BYTE*>(entry.data()), static_cast<DWORD>(entry.size()));
    if (rc == ERROR_SUCCESS) ++nextEntry_;
    return rc;
}

RegResult UndoJournal::beforeValueChange(const std::string& keyPath) {
    if (scopes_.empty() || !scopes_.back().savedKeys.insert(upperCased(keyPath)).second) return ERROR_SUCCESS;
    Key key(root_, keyPath, false);
    if (!key.get()) return ERROR_SUCCESS;  // the write will fail as well
    const RegResult rc = record(restoreEntry(keyPath, readValues(key.get())));
    if (rc != ERROR_SUCCESS) scopes_.back().savedKeys.erase(upperCased(keyPath));
    return rc;
}

RegResult UndoJournal::beforeKeyDelete(const std::string& keyPath) { return beforeValueChange(keyPath); }

RegResult UndoJournal::beforeKeyCreate(const std::string& keyPath) {
    if (scopes_.empty()) return ERROR_SUCCESS;
    // Each component that does not exist yet, outermost first, so that the
    // newest-first replay deletes them innermost first.
    std::string prefix;
    for (std::size_t start = 0; start <= keyPath.size();) {
        std::size_t end = keyPath.find('\\', start);
        if (end == std::string::npos) end = keyPath.size();
        if (end > start) {
            prefix += (prefix.empty() ? "" : "\\") + keyPath.substr(start, end - start);
            if (!Key(root_, prefix, false).get()) {
                std::string entry(1, kDeleteKey);
                putText(entry, prefix);
                if (const RegResult rc = record(entry); rc != ERROR_SUCCESS) return rc;
            }
        }
        start = end + 1;
    }
    return ERROR_SUCCESS;
}

void UndoJournal::recoverAbandoned(HKEY__* root) {
    Key journals(root, kJournalsPath, false);
    if (!journals.get()) return;
    std::vector<std::string> owners;
    char name[MAX_PATH];
    for (DWORD i = 0; RegEnumKeyA(journals.get(), i, name, sizeof name) == ERROR_SUCCESS; ++i) owners.push_back(name);
    for (const std::string& owner : owners) {
        const DWORD pid = std::strtoul(owner.c_str(), nullptr, 10);
        if (pid == GetCurrentProcessId() || processAlive(pid)) continue;
        const std::string path = std::string(kJournalsPath) + "\\" + owner;
        replayFrom(root, path, 0);
        removeJournal(root, path);
    }
}

}  // namespace braxcfg::platform
#endif
