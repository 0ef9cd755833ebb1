// Callbacks in the order of their registration: command handlers, subscribers
// of shared data, plugins that wait for the aircraft.
//
// Items may be appended and erased while the sequence is being called. An
// erased item is not called any more. Its place is reclaimed when no call is
// under way.
#ifndef AVSK_CALLBACK_SEQUENCE_H
#define AVSK_CALLBACK_SEQUENCE_H

#include <algorithm>
#include <cstddef>
#include <unordered_map>
#include <vector>

template <class T>
class AVSKCallbackSequence {
  public:
    void Append(const T &item) { entries.push_back({item, false}); }

    bool Empty() const { return entries.empty(); }

    // Erases the oldest item that satisfies pred, or the newest one, and tells whether there was one.
    template <class Pred>
    bool EraseOne(Pred pred, bool newest) {
        for (std::size_t i = 0; i < entries.size(); ++i) {
            Entry &entry = entries[newest ? entries.size() - 1 - i : i];
            if (entry.erased || !pred(entry.item))
                continue;
            entry.erased = true;
            Reclaim();
            return true;
        }
        return false;
    }

    template <class Pred>
    void EraseAll(Pred pred) {
        for (Entry &entry : entries)
            entry.erased |= pred(entry.item);
        Reclaim();
    }

    template <class Pred>
    bool Any(Pred pred) const {
        return std::any_of(entries.begin(), entries.end(),
                           [&pred](const Entry &entry) { return !entry.erased && pred(entry.item); });
    }

    // These two call visit(item) until it returns false, and return false then.
    // FromOldest also visits items that are appended meanwhile; FromNewest does not.
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

    // Calls visit(item) for each item, the oldest first, without those that are appended meanwhile.
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

    // While one exists, no item changes its place.
    struct Calls {
        explicit Calls(AVSKCallbackSequence &called) : sequence(called) { ++sequence.underWay; }
        ~Calls() {
            --sequence.underWay;
            if (sequence.mustReclaim) [[unlikely]]
                sequence.Reclaim();
        }
        Calls(const Calls &) = delete;
        Calls &operator=(const Calls &) = delete;
        AVSKCallbackSequence &sequence;
    };

    // Copies the item, because the call may reallocate the entries.
    template <class Visit>
    bool VisitAt(std::size_t index, Visit &visit) {
        if (entries[index].erased)
            return true;
        const T item = entries[index].item;
        return visit(item);
    }

    // Takes the erased items out, now or when no call is under way.
    void Reclaim() {
        mustReclaim = underWay != 0;
        if (!mustReclaim)
            entries.erase(
                std::remove_if(entries.begin(), entries.end(), [](const Entry &entry) { return entry.erased; }),
                entries.end());
    }

    std::vector<Entry> entries;
    int underWay = 0;
    bool mustReclaim = false;
};

// Knows which sequences hold items of which plugin, so that unloading a plugin
// visits only those. For modules that keep many sequences: command handlers and
// subscribers of shared data.
//
// owner is the member of an item that names its plugin. The sequences must not
// move and must not be destroyed.
template <class T, int T::*owner>
class AVSKOwnedSequences {
  public:
    using Sequence = AVSKCallbackSequence<T>;

    void Append(Sequence &sequence, const T &item) {
        ++itemsOf[item.*owner][&sequence];
        sequence.Append(item);
    }

    // Erases the oldest item equal to this one, or with newest the last one.
    bool EraseOne(Sequence &sequence, const T &item, bool newest) {
        if (!sequence.EraseOne([&item](const T &each) { return each == item; }, newest))
            return false;
        auto &sequences = itemsOf[item.*owner];
        const auto found = sequences.find(&sequence);
        if (--found->second == 0)
            sequences.erase(found);
        return true;
    }

    // Erases all items of a plugin.
    void EraseAllOf(int plugin) {
        const auto node = itemsOf.extract(plugin);
        if (node.empty())
            return;
        for (const auto &[sequence, count] : node.mapped())
            sequence->EraseAll([plugin](const T &each) { return each.*owner == plugin; });
    }

    bool Holds(int plugin) const {
        const auto found = itemsOf.find(plugin);
        return found != itemsOf.end() && !found->second.empty();
    }

  private:
    std::unordered_map<int, std::unordered_map<Sequence *, int>> itemsOf; // counts, by plugin and sequence
};

#endif
