#pragma once
// The subkey lists the SQLite backend keeps between calls, by key id: each
// list sorted as the registry enumerates (by folded name), with the child
// ids, the file's data version it was read at, and a stamp that changes
// whenever the list may have changed. Plain data under the backend's lock;
// it knows nothing of SQL.
#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>

namespace braxcfg::platform {

class SubkeyLists {
public:
    struct Child {
        std::string folded;  // foldName(name): the sort and lookup key
        std::string name;
        std::int64_t id = 0;
    };
    struct List {
        std::deque<Child> children;    // sorted by folded name
        std::int64_t dataVersion = 0;  // of the file when read
        std::uint64_t stamp = 0;       // unique in the process; moves with every change
    };

    // The kept list of key `id`, or null.
    const List* find(std::int64_t id) const;
    // Keeps `children` as read at `dataVersion`. The stamp stays when the
    // names and ids are those already kept, so that what callers computed
    // from the list stays valid. Past the size limit every other list is
    // dropped.
    const List& store(std::int64_t id, std::deque<Child> children, std::int64_t dataVersion);
    // This process created or deleted a child of `parent`.
    void added(std::int64_t parent, std::string folded, std::string_view name, std::int64_t id);
    void removed(std::int64_t parent, const std::string& folded);
    void drop(std::int64_t id);
    void clear();

    // The first child whose folded name is not below `folded`.
    static std::deque<Child>::const_iterator lowerBound(const std::deque<Child>& children, const std::string& folded);

private:
    std::unordered_map<std::int64_t, List> lists_;
    std::size_t names_ = 0;  // children held over all lists
};

}  // namespace braxcfg::platform
