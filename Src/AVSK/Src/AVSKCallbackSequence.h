// Callbacks in the order in which they were registered, for lists that are
// called whole: command handlers, subscribers, plugins that wait.
//
// Items may be appended and erased while the sequence is being called. One
// erased is not called any more; its place closes up when the last call is over.
#ifndef AVSK_CALLBACK_SEQUENCE_H
#define AVSK_CALLBACK_SEQUENCE_H

#include <algorithm>
#include <cstddef>
#include <vector>

template <class T>
class AVSKCallbackSequence {
  public:
    void Append(const T &item) { entries.push_back({item, false}); }

    bool Empty() const { return entries.empty(); }

    // Erases the oldest item, or with newest the last one, that satisfies pred.
    template <class Pred>
    bool EraseOne(Pred pred, bool newest) {
        for (std::size_t i = 0; i < entries.size(); ++i) {
            Entry &entry = entries[newest ? entries.size() - 1 - i : i];
            if (entry.erased || !pred(entry.item))
                continue;
            entry.erased = true;
            CloseUp();
            return true;
        }
        return false;
    }

    template <class Pred>
    void EraseAll(Pred pred) {
        for (Entry &entry : entries)
            entry.erased = entry.erased || pred(entry.item);
        CloseUp();
    }

    template <class Pred>
    bool Any(Pred pred) const {
        return std::any_of(entries.begin(), entries.end(),
                           [&pred](const Entry &entry) { return !entry.erased && pred(entry.item); });
    }

    // Call visit(item) for each item until it returns false, and tell whether
    // it never did: from the oldest on, those appended meanwhile included; from
    // the newest on without them.
    template <class Visit>
    bool FromOldest(Visit visit) {
        const Calls calls(*this);
        for (std::size_t i = 0; i < entries.size(); ++i)
            if (!VisitAt(i, visit))
                return false;
        return true;
    }

    template <class Visit>
    bool FromNewest(Visit visit) {
        const Calls calls(*this);
        for (std::size_t i = entries.size(); i-- > 0;)
            if (!VisitAt(i, visit))
                return false;
        return true;
    }

    // Calls visit(item) for each item there is now, from the oldest on.
    template <class Visit>
    void EachOfNow(Visit visit) {
        const Calls calls(*this);
        const std::size_t count = entries.size();
        for (std::size_t i = 0; i < count; ++i) {
            if (entries[i].erased)
                continue;
            const T item = entries[i].item;
            visit(item);
        }
    }

  private:
    struct Entry {
        T item;
        bool erased;
    };

    // Calls under way, during which no item changes its place.
    struct Calls {
        explicit Calls(AVSKCallbackSequence &called) : sequence(called) { ++sequence.underWay; }
        ~Calls() {
            --sequence.underWay;
            if (sequence.gaps) [[unlikely]]
                sequence.CloseUp();
        }
        Calls(const Calls &) = delete;
        Calls &operator=(const Calls &) = delete;
        AVSKCallbackSequence &sequence;
    };

    // The item is copied: the call may have the storage grow.
    template <class Visit>
    bool VisitAt(std::size_t index, Visit &visit) {
        if (entries[index].erased)
            return true;
        const T item = entries[index].item;
        return visit(item);
    }

    void CloseUp() {
        gaps = underWay != 0;
        if (!gaps)
            entries.erase(
                std::remove_if(entries.begin(), entries.end(), [](const Entry &entry) { return entry.erased; }),
                entries.end());
    }

    std::vector<Entry> entries;
    int underWay = 0;
    bool gaps = false;
};

#endif
