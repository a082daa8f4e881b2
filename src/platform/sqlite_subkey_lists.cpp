#include "platform/sqlite_subkey_lists.h"

#include <algorithm>
#include <atomic>

namespace braxcfg::platform {
namespace {

// Unique within the process, so a stamp a caller kept never matches a list
// of another key or another store.
std::atomic<std::uint64_t> nextStamp{1};

// Lists of more names than this are not all kept: past it, every list but
// the one just read is dropped (each is read again when next needed).
constexpr std::size_t kMaxNames = std::size_t{1} << 18;

bool sameChildren(const std::deque<SubkeyLists::Child>& a, const std::deque<SubkeyLists::Child>& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const auto& x, const auto& y) {
        return x.id == y.id && x.name == y.name;
    });
}

}  // namespace

const SubkeyLists::List* SubkeyLists::find(std::int64_t id) const {
    const auto found = lists_.find(id);
    return found == lists_.end() ? nullptr : &found->second;
}

const SubkeyLists::List& SubkeyLists::store(std::int64_t id, std::deque<Child> children, std::int64_t dataVersion) {
    List& list = lists_[id];
    const bool same = list.stamp != 0 && sameChildren(list.children, children);
    names_ += children.size();
    names_ -= list.children.size();
    list.children = std::move(children);
    list.dataVersion = dataVersion;
    if (!same) list.stamp = nextStamp++;
    if (names_ > kMaxNames) {
        for (auto it = lists_.begin(); it != lists_.end();) {
            if (it->first == id) {
                ++it;
                continue;
            }
            names_ -= it->second.children.size();
            it = lists_.erase(it);
        }
    }
    return lists_.at(id);
}

std::deque<SubkeyLists::Child>::const_iterator SubkeyLists::lowerBound(const std::deque<Child>& children,
                                                                      const std::string& folded) {
    return std::lower_bound(children.begin(), children.end(), folded,
                            [](const Child& child, const std::string& key) { return child.folded < key; });
}

void SubkeyLists::added(std::int64_t parent, std::string folded, std::string_view name, std::int64_t id) {
    const auto found = lists_.find(parent);
    if (found == lists_.end()) return;
    auto& children = found->second.children;
    const auto at = lowerBound(children, folded);
    children.insert(at, Child{std::move(folded), std::string(name), id});
    found->second.stamp = nextStamp++;
    ++names_;
}

void SubkeyLists::removed(std::int64_t parent, const std::string& folded) {
    const auto found = lists_.find(parent);
    if (found == lists_.end()) return;
    auto& children = found->second.children;
    const auto at = lowerBound(children, folded);
    if (at == children.end() || at->folded != folded) return;
    children.erase(at);
    found->second.stamp = nextStamp++;
    --names_;
}

void SubkeyLists::drop(std::int64_t id) {
    if (const auto found = lists_.find(id); found != lists_.end()) {
        names_ -= found->second.children.size();
        lists_.erase(found);
    }
}

void SubkeyLists::clear() {
    lists_.clear();
    names_ = 0;
}

}  // namespace braxcfg::platform
