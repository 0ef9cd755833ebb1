// The list that holds every callback a plugin registers, with removal that is
// safe while the list is walked.
//
// A record removed during a walk stays linked, marked dead, until a walk ends;
// then it is reclaimed: taken out of the list and out of every look-up. Its
// storage lives on while any walk of the list is under way, and each walk
// remembers where it would have gone on from a record that left under it. So
// a callback may remove its own record, or any other, and may walk the list
// itself, however deep.
//
// Used by the modules that keep callbacks; it calls nobody.
#ifndef AVSK_RESOURCE_LIST_H
#define AVSK_RESOURCE_LIST_H

#include <climits>
#include <unordered_set>

template <class T>
class AVSKResourceList;

// The links of a record; T derives from AVSKResource_t<T>.
template <class T>
struct AVSKResource_t {
    T *next = nullptr;
    bool dead = false;
    T *prev = nullptr;
    T *dead_next = nullptr;
    // In a list, dead or alive. A reclaimed record whose storage lives on is not.
    bool linked = false;
    // On the dead chain, which a record brought to the front after its removal does not leave.
    bool chained = false;
    // The last of those that an Add cut off: next does not point back.
    bool cut = false;

    T *get_next() const { return next; }
    T *get_prev() const { return prev; }
    bool is_dead() const { return dead; }
    // Removed, though perhaps brought to the front since.
    bool is_removed() const { return chained || !linked; }

    static void AVSKAddResource(T *&head, T *rec) {
        rec->prev = nullptr;
        rec->next = head;
        rec->cut = false;
        if (head) {
            if (head->prev)
                head->prev->cut = true;
            head->prev = rec;
        }
        rec->dead = false;
        rec->linked = true;
        head = rec;
    }

    // Unlinks a record that is linked again at once.
    static void AVSKRemoveResource(T *&head, T *rec) {
        if (head == rec)
            head = rec->next;
        if (rec->prev) {
            rec->prev->next = rec->next;
            rec->prev->cut = rec->cut;
        }
        if (rec->next && !rec->cut)
            rec->next->prev = rec->prev;
    }

    // Marks a record for reclaiming. It is chained once, however often it is removed.
    static void AVSKDeferResource(T *&dead_list, T *rec) {
        rec->dead = true;
        if (rec->chained)
            return;
        rec->chained = true;
        rec->dead_next = dead_list;
        dead_list = rec;
    }
};

// A base that knows every object of a type that has storage, so that a stale
// handle is told by its address alone.
template <class T>
class AVSKTracked {
  public:
    AVSKTracked(const AVSKTracked &) = delete;
    AVSKTracked &operator=(const AVSKTracked &) = delete;

    static bool Exists(const T *object) { return object && all.count(object) != 0; }

    // Calls visit for each; it must not make or destroy any.
    template <class Visit>
    static void ForEach(Visit visit) {
        for (const AVSKTracked *object : all)
            visit(static_cast<T *>(const_cast<AVSKTracked *>(object)));
    }

  protected:
    AVSKTracked() { all.insert(this); }
    ~AVSKTracked() { all.erase(this); }

  private:
    // Never destroyed: plugins may still be called while the process exits.
    static inline std::unordered_set<const AVSKTracked *> &all = *new std::unordered_set<const AVSKTracked *>;
};

// When a list reclaims what was removed from it.
enum class AVSKReclaim {
    AtEveryEnd, // at the end of any walk, also of one inside another
    AfterPass   // at the end of the outermost walk: a removed record is still found until then
};

enum class AVSKWalkDirection {
    Forward,
    Backward
};
enum class AVSKWalkOver {
    LiveRecords,
    AllRecords
};

template <class T>
class AVSKResourceList {
  public:
    class Walk;
    template <AVSKWalkDirection direction, AVSKWalkOver over>
    class Range;
    class Pin;

    T *head = nullptr; // a cursor: the first record, or the last after a walk from the back
    T *dead_list = nullptr;
    int iterate_depth = 0;
    bool needs_clean = false;

    constexpr explicit AVSKResourceList(AVSKReclaim when = AVSKReclaim::AtEveryEnd) : reclaim(when) {}
    AVSKResourceList(const AVSKResourceList &) = delete;
    AVSKResourceList &operator=(const AVSKResourceList &) = delete;

    // The list owns rec from here on. rec becomes the first record; if the
    // cursor stands on the last record, those before that one are cut off.
    void Add(T *rec) { T::AVSKAddResource(head, rec); }

    void Remove(T *rec) {
        if (iterate_depth != 0 || rec->chained) {
            T::AVSKDeferResource(dead_list, rec);
            needs_clean = true;
        } else {
            Reclaim(rec);
        }
    }

    // Moves a record at once, also during a walk. One that was removed comes
    // alive, but is reclaimed all the same when its time comes.
    void MoveToFront(T *rec) {
        for (Walk *walk = walks; walk; walk = walk->outer)
            walk->PassOver(rec);
        T::AVSKRemoveResource(head, rec);
        T::AVSKAddResource(head, rec);
    }

    T *BeginIterate() {
        Deepen();
        if (head && head->prev) [[unlikely]]
            Rewind();
        return head;
    }

    // Leaves the cursor on the last record.
    T *BeginReverseIterate() {
        Deepen();
        while (head && head->next)
            head = head->next;
        return head;
    }

    void EndIterate() {
        if (iterate_depth > 0) [[likely]]
            --iterate_depth;
        if (needs_clean && !(walks && reclaim == AVSKReclaim::AfterPass))
            Clean();
    }

    [[gnu::noinline]] void Clean() {
        while (T *rec = dead_list) {
            dead_list = rec->dead_next;
            Reclaim(rec);
        }
        needs_clean = false;
    }

    // Ranges for range-based for. Each is one walk: begun when the range is
    // made and ended when it goes, also by an exception.
    using LiveRange = Range<AVSKWalkDirection::Forward, AVSKWalkOver::LiveRecords>;
    using LiveRangeFromBack = Range<AVSKWalkDirection::Backward, AVSKWalkOver::LiveRecords>;
    using AllRange = Range<AVSKWalkDirection::Forward, AVSKWalkOver::AllRecords>;
    LiveRange LiveRecords() { return LiveRange(*this); }
    LiveRangeFromBack LiveRecordsFromBack() { return LiveRangeFromBack(*this); }
    AllRange AllRecords() { return AllRange(*this); }

    // Tells whether a record satisfies pred, dead ones included; without a walk and its effects.
    template <class Pred>
    bool Any(Pred pred) const {
        const T *rec = head;
        while (rec && rec->prev)
            rec = rec->prev;
        for (; rec; rec = rec->next)
            if (pred(*rec))
                return true;
        return false;
    }

  private:
    // Some walks never end, so the depth is bounded by hand.
    void Deepen() {
        if (iterate_depth != INT_MAX) [[likely]]
            ++iterate_depth;
    }

    [[gnu::noinline]] void Rewind() {
        while (head->prev)
            head = head->prev;
    }

    void Reclaim(T *rec) {
        for (Walk *walk = walks; walk; walk = walk->outer)
            walk->Leave(rec);
        T::AVSKRemoveResource(head, rec);
        if (!walks && pins == 0) {
            delete rec;
            return;
        }
        rec->dead = true;
        rec->linked = false;
        rec->chained = false;
        rec->dead_next = retired;
        retired = rec;
    }

    void FreeRetired() {
        if (retired && !walks && pins == 0) [[unlikely]]
            FreeAllRetired();
    }

    [[gnu::noinline]] void FreeAllRetired() {
        while (T *rec = retired) {
            retired = rec->dead_next;
            delete rec;
        }
    }

    Walk *walks = nullptr; // under way, the innermost first
    int pins = 0;
    T *retired = nullptr; // reclaimed, storage kept for the walks and pins
    const AVSKReclaim reclaim;
};

// A walk under way. It lives on the stack of the function that walks.
template <class T>
class AVSKResourceList<T>::Walk {
  public:
    Walk(AVSKResourceList &walked, AVSKWalkDirection way)
        : list(walked), outer(walked.walks), direction(way),
          current(way == AVSKWalkDirection::Forward ? walked.BeginIterate() : walked.BeginReverseIterate()) {
        list.walks = this;
    }

    Walk(const Walk &) = delete;
    Walk &operator=(const Walk &) = delete;

    ~Walk() {
        list.walks = outer;
        if (list.iterate_depth > 0) [[likely]]
            --list.iterate_depth;
        if (list.needs_clean || list.retired) [[unlikely]]
            CleanUp();
    }

    T *Current() const { return current; }
    void StandOn(T *rec) { current = rec; }

    // Whether the record that the walk stands on was reclaimed, and where to go on then.
    bool HasLeft() const { return left; }
    T *Resume() {
        left = false;
        return resume;
    }

    // Has the walk never end for the list: its depth stays raised. The pass
    // and its hold on storage end all the same.
    void KeepOpen() {
        if (!open)
            list.Deepen();
        open = true;
    }

  private:
    friend class AVSKResourceList;

    [[gnu::noinline]] void CleanUp() {
        if (list.needs_clean && (list.reclaim == AVSKReclaim::AfterPass ? !outer : !open))
            list.Clean();
        list.FreeRetired();
    }

    T *Beyond(const T *rec) const { return direction == AVSKWalkDirection::Forward ? rec->next : rec->prev; }

    void PassOver(T *rec) {
        if (left && resume == rec)
            resume = Beyond(rec);
    }

    void Leave(T *rec) {
        PassOver(rec);
        if (!left && current == rec) {
            left = true;
            resume = Beyond(rec);
        }
    }

    AVSKResourceList &list;
    Walk *const outer;
    const AVSKWalkDirection direction;
    T *current;
    T *resume = nullptr; // where to go on if current left the list
    bool left = false;
    bool open = false;
};

// Keeps the storage of records through a call that is not made from a walk.
// Unlike a walk it defers no removal.
template <class T>
class [[nodiscard]] AVSKResourceList<T>::Pin {
  public:
    explicit Pin(AVSKResourceList &pinned) : list(pinned) { ++list.pins; }
    ~Pin() {
        --list.pins;
        list.FreeRetired();
    }
    Pin(const Pin &) = delete;
    Pin &operator=(const Pin &) = delete;

  private:
    AVSKResourceList &list;
};

// A walk for range-based for, of live records or of all.
template <class T>
template <AVSKWalkDirection direction, AVSKWalkOver over>
class AVSKResourceList<T>::Range {
  public:
    explicit Range(AVSKResourceList &walked) : walk(walked, direction) { walk.StandOn(Wanted(walk.Current())); }

    struct End {};
    class Iterator {
      public:
        explicit Iterator(Range &walked) : range(walked) {}
        T &operator*() const { return *range.walk.Current(); }
        Iterator &operator++() {
            range.Step();
            return *this;
        }
        bool operator!=(End /*end*/) const { return range.walk.Current() != nullptr; }

      private:
        Range &range;
    };

    Iterator begin() { return Iterator(*this); }
    End end() const { return {}; }
    void KeepOpen() { walk.KeepOpen(); }

  private:
    static T *Beyond(const T *rec) { return direction == AVSKWalkDirection::Forward ? rec->next : rec->prev; }

    static T *Wanted(T *rec) {
        if constexpr (over == AVSKWalkOver::LiveRecords)
            while (rec && rec->dead)
                rec = Beyond(rec);
        return rec;
    }

    void Step() { walk.StandOn(Wanted(walk.HasLeft() ? walk.Resume() : Beyond(walk.Current()))); }

    Walk walk;
};

#endif
