#include "tcpip/alist.h"

#include <strings.h>

#include <new>

#include "platform/product_settings.h"
#include "platform/store.h"

namespace braxcfg::tcpip {
namespace {

// A copy of `text`, or absent when there is no room for one.
AliasEntry::Text copyOf(const AliasEntry::Text& text) noexcept {
    try {
        return text;
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    }
}

bool sameIgnoringCase(const AliasEntry::Text& a, const std::string& b) {
    return a && strcasecmp(a->c_str(), b.c_str()) == 0;
}

}  // namespace

AliasEntry::AliasEntry(const Text& name, const Text& rsrcString, const Text& korlAddress)
    : name_(copyOf(name)), loadedName_(copyOf(name)), rsrcString_(copyOf(rsrcString)),
      korlAddress_(copyOf(korlAddress)) {}

void AliasEntry::setName(const Text& text) { name_ = copyOf(text); }
void AliasEntry::setLoadedName(const Text& text) { loadedName_ = copyOf(text); }
void AliasEntry::setRsrcString(const Text& text) { rsrcString_ = copyOf(text); }
void AliasEntry::setKorlAddress(const Text& text) { korlAddress_ = copyOf(text); }

AList::AList() : useCount_(new (std::nothrow) std::int32_t(1)) {}

AList::AList(const AList& other)
    : head_(other.head_), cursor_(other.cursor_), tail_(other.tail_), count_(other.count_),
      useCount_(other.useCount_) {
    if (useCount_ != nullptr) ++*useCount_;
}

AList::~AList() {
    if (useCount_ == nullptr) {
        freeNodes();
        return;
    }
    if (--*useCount_ < 1) {
        delete useCount_;
        freeNodes();
    }
}

void AList::freeNodes() {
    for (Node* node = head_; node != nullptr;) {
        Node* following = node->next;
        delete node;
        node = following;
    }
    head_ = cursor_ = tail_ = nullptr;
    count_ = 0;
}

int AList::append(AliasEntry* item) {
    Node* node = new (std::nothrow) Node{item, nullptr};
    if (node == nullptr) return 1;
    if (head_ != nullptr && tail_ == nullptr)
        for (tail_ = head_; tail_->next != nullptr; tail_ = tail_->next) {
        }
    if (tail_ != nullptr)
        tail_->next = node;
    else
        head_ = node;
    tail_ = node;
    ++count_;
    return 0;
}

int AList::prepend(AliasEntry* item) {
    Node* node = new (std::nothrow) Node{item, head_};
    if (node == nullptr) return 1;
    head_ = node;
    ++count_;
    return 0;
}

int AList::remove(AliasEntry* item) {
    Node* previous = nullptr;
    Node* node = head_;
    while (node != nullptr && node->item != item) {
        previous = node;
        node = node->next;
    }
    if (node == nullptr) return 1;
    if (cursor_ == node) cursor_ = node->next;
    if (tail_ == node) tail_ = nullptr;
    (previous != nullptr ? previous->next : head_) = node->next;
    delete node;
    --count_;
    return 0;
}

void AList::reset() { cursor_ = head_; }

AliasEntry* AList::next() {
    if (cursor_ == nullptr) return nullptr;
    AliasEntry* item = cursor_->item;
    cursor_ = cursor_->next;
    return item;
}

AliasEntry* AList::findByRsrcString(const std::string& key) {
    reset();
    while (AliasEntry* record = next())
        if (record != nullptr && sameIgnoringCase(record->rsrcString(), key)) return record;
    return nullptr;
}

AliasEntry* AList::findDuplicate(const AliasEntry* record) {
    reset();
    if (record == nullptr || !record->name()) return nullptr;
    while (AliasEntry* other = next()) {
        if (other == record || other == nullptr || other->state() == AliasState::Deleted) continue;
        if (sameIgnoringCase(other->name(), *record->name())) return other;
    }
    return nullptr;
}

int AList::addRecord(AliasEntry* record) {
    if (record == nullptr || findDuplicate(record) != nullptr) return 1;
    record->setState(AliasState::Added);
    return append(record);
}

int AList::markDeleted(AliasEntry* record) {
    if (record == nullptr) return 1;
    record->setState(AliasState::Deleted);
    return 0;
}

int AList::markChanged(AliasEntry* record) {
    if (record == nullptr) return 1;
    record->setState(AliasState::Changed);
    return 0;
}

void AList::load() {
    std::string name;
    std::string text;
    for (std::uint32_t n = 0; platform::enumDeviceList(platform::kVisaDevicesList, n, name, text); ++n) {
        auto* record = new (std::nothrow) AliasEntry(name, text, std::nullopt);
        if (record == nullptr) continue;
        if (addRecord(record) != 0) {
            delete record;
            continue;
        }
        record->setState(AliasState::Unchanged);
    }
    for (std::uint32_t n = 0; platform::enumDeviceList(platform::kDevicesList, n, name, text); ++n) {
        auto* record = new (std::nothrow) AliasEntry(name, std::nullopt, text);
        if (record == nullptr) continue;
        if (AliasEntry* existing = findDuplicate(record)) {
            existing->setKorlAddress(text);
            delete record;
            continue;
        }
        // Unknown to "VISADevices": it stays Added, so the next commit
        // writes it back.
        if (addRecord(record) != 0) delete record;
    }
}

int AList::commit() {
    platform::StoreTransaction transaction;
    reset();
    while (AliasEntry* record = next()) {
        if (record == nullptr) continue;
        const std::string name = record->name().value_or("");
        switch (record->state()) {
            case AliasState::Unchanged:
                break;
            case AliasState::Added:
                // An absent value leaves that list alone.
                platform::changeDeviceLists(name, record->korlAddress(), record->rsrcString());
                break;
            case AliasState::Changed:
                platform::changeDeviceLists(record->loadedName().value_or(""), "", "");
                platform::changeDeviceLists(name, record->korlAddress().value_or(""),
                                            record->rsrcString().value_or(""));
                break;
            case AliasState::Deleted:
                platform::changeDeviceLists(name, "", "");
                break;
        }
    }
    return transaction.commit() ? 0 : 1;
}

void AList::deleteRecords() {
    reset();
    while (AliasEntry* record = next()) delete record;
    freeNodes();
}

}  // namespace braxcfg::tcpip
