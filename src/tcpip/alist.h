#pragma once
// AList: the small list container of the LAN resource list. It holds alias
// entries (one per alias of a LAN resource) by pointer, with an iteration
// cursor of its own, and loads them from and commits them to the two alias
// lists of the product settings ("VISADevices" for the resource string,
// "Devices" for the KORL address).
//
// The list never owns its items. Integer results: 0 success, 1 failure.
#include <cstdint>
#include <optional>
#include <string>

namespace braxcfg::tcpip {

enum class AliasState : std::int32_t { Unchanged = 0, Added = 1, Changed = 2, Deleted = 3 };

// One alias with its two values. Each text is its own copy, or absent
// (null); a copy that cannot be made leaves the text absent.
class AliasEntry {
public:
    using Text = std::optional<std::string>;

    // Name and loaded name both start as `name`; state Unchanged.
    AliasEntry(const Text& name, const Text& rsrcString, const Text& korlAddress);

    const Text& name() const { return name_; }
    // The name as loaded: the entry to remove from the store after a rename.
    const Text& loadedName() const { return loadedName_; }
    const Text& rsrcString() const { return rsrcString_; }
    const Text& korlAddress() const { return korlAddress_; }
    AliasState state() const { return state_; }

    void setName(const Text& text);
    void setLoadedName(const Text& text);
    void setRsrcString(const Text& text);
    void setKorlAddress(const Text& text);
    void setState(AliasState state) { state_ = state; }

private:
    Text name_;
    Text loadedName_;
    Text rsrcString_;
    Text korlAddress_;
    AliasState state_ = AliasState::Unchanged;
};

class AList {
public:
    AList();
    // A second handle on the same nodes, for reading: the nodes go when the
    // last handle goes. Change the list through one handle only.
    AList(const AList& other);
    AList& operator=(const AList&) = delete;
    virtual ~AList();

    // Adds at the end; when the last node is not known (after it was
    // removed), walks from the head to find it.
    int append(AliasEntry* item);
    // Adds at the front; the known last node stays as it is.
    int prepend(AliasEntry* item);
    // Removes the first node holding this very item (not an equal one). An
    // iteration standing on it goes on with the node after it.
    int remove(AliasEntry* item);

    // The cursor, shared by everything that iterates: find operations and
    // commit move it too.
    void reset();
    // The item under the cursor, moving on; null at the end.
    AliasEntry* next();
    std::uint32_t count() const { return count_; }

    // The first entry whose resource string equals `key`, case ignored.
    AliasEntry* findByRsrcString(const std::string& key);
    // The first entry other than `record` itself, not deleted, with the same
    // name, case ignored.
    AliasEntry* findDuplicate(const AliasEntry* record);
    // Appends `record` marked Added, unless it is null or a duplicate.
    int addRecord(AliasEntry* record);
    int markDeleted(AliasEntry* record);
    int markChanged(AliasEntry* record);

    // Fills an empty list from the store: every "VISADevices" alias, then the
    // KORL address of each "Devices" alias, which becomes an Added entry of
    // its own when "VISADevices" does not have it. The entries created belong
    // to the caller (see deleteRecords).
    void load();
    // Writes every changed entry back in one store transaction: Added ones
    // as they are, Changed ones after removing their loaded name, Deleted
    // ones removed. 1 when the store did not take the change.
    int commit();
    // Deletes every entry of the list and empties it, for the owner of the
    // entries once it is done with them.
    void deleteRecords();

private:
    struct Node {
        AliasEntry* item;
        Node* next;
    };

    void freeNodes();

    Node* head_ = nullptr;
    Node* cursor_ = nullptr;
    Node* tail_ = nullptr;  // null when not known
    std::uint32_t count_ = 0;
    std::int32_t* useCount_ = nullptr;  // shared by the handles on these nodes
};

}  // namespace braxcfg::tcpip
