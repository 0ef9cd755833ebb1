// The intrusive list of the callbacks that plugins register. A callback may
// add, move and remove any record, and walk the list itself, to any depth.
//
// A record that is removed during a walk is marked dead and stays linked.
// Dead records are reclaimed when a walk ends: they are unlinked, and no
// look-up finds them any more. Their storage is freed when no walk is under
// way. A reclaimed record keeps its links until then, and a walk that stands on
// it continues along them.
//
// Example: a pass over four flight loops has called A and stands on B. The
// callback of B does all of the following.
//
//                      list                                   pass continues with
//                      A <-> B <-> C <-> D                    C
//   Remove(C)          A <-> B <-> C(dead) <-> D              D
//   Remove(B)          A <-> B(dead) <-> C(dead) <-> D        D
//   Add(E)             E <-> A <-> B(dead) <-> C(dead) <-> D  D
//   walks the list     E <-> A <-> D                          D
//   returns            E <-> A <-> D                          -
//
// The inner walk visits E, A and D, and its end reclaims B and C. The pass
// still stands on B, whose storage is valid: it writes the result of the
// callback there and continues with D. The end of the pass frees B and C.
// With AVSKReclaim::AfterPass the inner walk reclaims nothing, and the end of
// the pass reclaims and frees both.
//
// Outside readers rely on AVSKAddResource, AVSKRemoveResource and the names in
// snake_case. All other functions are PascalCase, all other data camelCase.
//
// AVSKDisplay and AVSKProcessing keep such lists; AVSKMenus uses AVSKTracked.
#ifndef AVSK_RESOURCE_LIST_H
#define AVSK_RESOURCE_LIST_H

#include <climits>
#include <cstddef>
#include <unordered_set>

// With a sanitizer each record is an allocation of its own, which it watches.
#if defined(__SANITIZE_ADDRESS__)
#define AVSK_POOLS_RECORDS 0
#elif defined(__has_feature)
#define AVSK_POOLS_RECORDS !__has_feature(address_sanitizer)
#else
#define AVSK_POOLS_RECORDS 1
#endif

// Keeps the records of a type side by side, so that a walk reads memory in
// order. Slots are reused, the last freed first, and not returned to the heap.
template <class T>
class AVSKRecordPool {
  public:
    static void *Take() {
        if (!free)
            Grow();
        Slot *const slot = free;
        free = slot->next;
        return slot;
    }

    static void Return(void *record) {
        auto *const slot = static_cast<Slot *>(record);
        slot->next = free;
        free = slot;
    }

  private:
    union Slot {
        Slot *next;
        alignas(T) unsigned char record[sizeof(T)];
    };
    static constexpr std::size_t kSlotsPerChunk = 64;

    // The last slot is used first: a list has its newest record in front, so
    // that a walk goes upward.
    static void Grow() {
        Slot *const chunk = new Slot[kSlotsPerChunk];
        for (Slot *slot = chunk; slot != chunk + kSlotsPerChunk; ++slot)
            Return(slot);
    }

    static inline Slot *free = nullptr;
};

template <class T>
class AVSKResourceList;

// The links of a record; T derives from AVSKResource_t<T>.
template <class T>
class AVSKResource_t {
  public:
#if AVSK_POOLS_RECORDS
    static void *operator new(std::size_t /*size*/) { return AVSKRecordPool<T>::Take(); }
    static void operator delete(void *record) { AVSKRecordPool<T>::Return(record); }
#endif

    T *get_next() const { return next; }
    T *get_prev() const { return prev; }
    bool is_dead() const { return dead; }
    // In a list, dead or alive. False for a reclaimed record whose storage is still kept.
    bool IsLinked() const { return linked; }
    // True also for a removed record that was brought to the front since.
    bool IsRemoved() const { return chained || !linked; }

  private:
    friend class AVSKResourceList<T>;

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
    static void Defer(T *&dead_list, T *rec) {
        rec->dead = true;
        if (rec->chained)
            return;
        rec->chained = true;
        rec->dead_next = dead_list;
        dead_list = rec;
    }

    T *next = nullptr;
    bool dead = false;
    bool linked = false;
    bool chained = false; // on the dead chain; bringing it to the front does not unchain it
    bool cut = false;     // the last of the records that an Add cut off: its next does not point back
    T *prev = nullptr;
    T *dead_next = nullptr;
};

// A base that registers every object of a type, so that a stale handle is
// detected by its address alone.
template <class T>
class AVSKTracked {
  public:
    AVSKTracked(const AVSKTracked &) = delete;
    AVSKTracked &operator=(const AVSKTracked &) = delete;

    static bool Exists(const T *object) { return object && all.count(object) != 0; }

    // Calls visit for each object; visit must not create or destroy any.
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

// When a list reclaims removed records.
enum class AVSKReclaim {
    AtEveryEnd, // at the end of every walk, nested ones included
    AfterPass   // at the end of the outermost walk; look-ups find removed records until then
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
    template <AVSKWalkDirection direction, AVSKWalkOver over>
    class Range;
    class Pin;

    constexpr explicit AVSKResourceList(AVSKReclaim when = AVSKReclaim::AtEveryEnd) : reclaim(when) {}
    AVSKResourceList(const AVSKResourceList &) = delete;
    AVSKResourceList &operator=(const AVSKResourceList &) = delete;

    // Takes ownership of rec and makes it the first record. If the cursor
    // stands on the last record, the records before that one are cut off.
    void Add(T *rec) { T::AVSKAddResource(head, rec); }

    void Remove(T *rec) {
        if (iterate_depth != 0 || rec->chained) {
            T::Defer(dead_list, rec);
            needs_clean = true;
        } else {
            Reclaim(rec);
        }
    }

    // Moves a record at once, also during a walk. A dead record becomes live,
    // but the next reclaiming takes it all the same.
    void MoveToFront(T *rec) {
        // A walk on a reclaimed record continues past this one, not at the front.
        for (T *gone = retired; gone; gone = gone->dead_next) {
            if (gone->next == rec)
                gone->next = rec->next;
            if (gone->prev == rec)
                gone->prev = rec->prev;
        }
        T::AVSKRemoveResource(head, rec);
        T::AVSKAddResource(head, rec);
    }

    // Ranges for range-based for. Each is one walk, which ends with the
    // range's scope, also when an exception leaves it.
    using LiveRange = Range<AVSKWalkDirection::Forward, AVSKWalkOver::LiveRecords>;
    using LiveRangeFromBack = Range<AVSKWalkDirection::Backward, AVSKWalkOver::LiveRecords>;
    using AllRange = Range<AVSKWalkDirection::Forward, AVSKWalkOver::AllRecords>;
    LiveRange LiveRecords() { return LiveRange(*this); }
    LiveRangeFromBack LiveRecordsFromBack() { return LiveRangeFromBack(*this); }
    AllRange AllRecords() { return AllRange(*this); }

    // These three walk all records, dead ones included.
    template <class Pred>
    T *FindFirst(Pred pred) {
        for (T &rec : AllRecords())
            if (pred(rec))
                return &rec;
        return nullptr;
    }

    template <class Pred>
    bool RemoveFirst(Pred pred) {
        for (T &rec : AllRecords())
            if (pred(rec)) {
                Remove(&rec);
                return true;
            }
        return false;
    }

    template <class Pred>
    void RemoveAll(Pred pred) {
        for (T &rec : AllRecords())
            if (pred(rec))
                Remove(&rec);
    }

    // True if a record satisfies pred, dead ones included. This is not a walk:
    // it moves no cursor and reclaims nothing.
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

    // The bare begin and end of a walk, for walks that stay open by rule.
    T *BeginIterate() {
        Deepen();
        return First();
    }

    // Leaves the cursor on the last record.
    T *BeginReverseIterate() {
        Deepen();
        return Last();
    }

    void EndIterate() { EndWalk(false); }

    // Reclaims all removed records. From outside only the tests call it.
    [[gnu::noinline]] void Clean() {
        while (T *rec = dead_list) {
            dead_list = rec->dead_next;
            Reclaim(rec);
        }
        needs_clean = retired != nullptr;
    }

  protected:           // not private, because the tests of the list use head and iterate_depth
    T *head = nullptr; // a cursor: the first record, or the last after a walk from the back
    T *dead_list = nullptr;
    int iterate_depth = 0;
    bool needs_clean = false; // the end of a walk may have something to reclaim or to free

  private:
    // Walks that stay open raise the depth for good. They leave enough of it
    // for those that do not.
    void Deepen() {
        if (iterate_depth < INT_MAX / 2)
            ++iterate_depth;
    }

    T *First() {
        if (head && head->prev) [[unlikely]]
            Rewind();
        return head;
    }

    T *Last() {
        while (head && head->next)
            head = head->next;
        return head;
    }

    [[gnu::noinline]] void Rewind() {
        while (head->prev)
            head = head->prev;
    }

    void EndWalk(bool staysOpen) {
        if (iterate_depth > 0) [[likely]]
            --iterate_depth;
        if (needs_clean) [[unlikely]]
            ReclaimAndFree(staysOpen);
    }

    [[gnu::noinline]] void ReclaimAndFree(bool staysOpen) {
        if (reclaim == AVSKReclaim::AfterPass ? !walking : !staysOpen)
            Clean();
        FreeRetired();
    }

    // A record whose storage is kept keeps its links: a walk on it continues
    // along them.
    void Reclaim(T *rec) {
        T::AVSKRemoveResource(head, rec);
        if (!walking && pins == 0) {
            delete rec;
            return;
        }
        rec->dead = true;
        rec->linked = false;
        rec->chained = false;
        rec->dead_next = retired;
        retired = rec;
        needs_clean = true;
    }

    void FreeRetired() {
        if (retired && !walking && pins == 0) [[unlikely]]
            FreeAllRetired();
    }

    [[gnu::noinline]] void FreeAllRetired() {
        while (T *rec = retired) {
            retired = rec->dead_next;
            delete rec;
        }
        needs_clean = dead_list != nullptr;
    }

    bool walking = false; // a walk is under way
    int pins = 0;
    T *retired = nullptr; // reclaimed, with storage that walks or pins keep
    const AVSKReclaim reclaim;
};

// Keeps the storage of reclaimed records during a call that is made outside a
// walk. Unlike a walk it defers no removal.
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

// A walk for range-based for, of live records or of all. The list knows only
// that walks are under way: what a walk stands on is in a register.
template <class T>
template <AVSKWalkDirection direction, AVSKWalkOver over>
class AVSKResourceList<T>::Range {
  public:
    explicit Range(AVSKResourceList &walked)
        : list(walked), nested(walked.walking),
          first(direction == AVSKWalkDirection::Forward ? walked.First() : walked.Last()) {
        ++list.iterate_depth;
        list.walking = true;
    }

    // Inline also on the path of an exception; otherwise the range would live
    // in memory.
    [[gnu::always_inline]] ~Range() {
        list.walking = nested;
        list.EndWalk(open);
    }

    Range(const Range &) = delete;
    Range &operator=(const Range &) = delete;

    struct End {};
    class Iterator {
      public:
        explicit Iterator(T *rec) : current(rec) {}
        T &operator*() const { return *current; }
        Iterator &operator++() {
            current = Wanted(Beyond(current));
            return *this;
        }
        bool operator!=(End /*end*/) const { return current != nullptr; }

      private:
        T *current;
    };

    Iterator begin() { return Iterator(Wanted(first)); }
    End end() const { return {}; }

    // Leaves the list's depth raised when the walk ends. Reclaimed records are
    // freed all the same.
    void KeepOpen() {
        if (!open)
            list.Deepen();
        open = true;
    }

  private:
    static T *Beyond(const T *rec) { return direction == AVSKWalkDirection::Forward ? rec->next : rec->prev; }

    // Reclaimed records are dead, too. The links of one may lead to another.
    static T *Wanted(T *rec) {
        while (rec && (over == AVSKWalkOver::LiveRecords ? rec->dead : !rec->linked))
            [[unlikely]] rec = Beyond(rec);
        return rec;
    }

    AVSKResourceList &list;
    const bool nested;
    T *const first;
    bool open = false;
};

#endif
