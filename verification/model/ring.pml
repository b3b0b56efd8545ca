/* Models a block's ring of free slots, its use count and its superseding, as in geometry/ObjectPoolBlock.h and
 * geometry/ObjectPool.h. spin searches every interleaving of its sequentially consistent steps.
 *
 * Each thread takes and returns ROUNDS times, the last thread LAST_ROUNDS times. It takes one slot, or two at once, or
 * two one by one if no two can be taken at once. It returns two slots at once, or one by one. One process supersedes
 * the block at any moment. Five things are asserted: no slot has two owners; no step touches the freed block; the block
 * is freed once at most; an admitted take leaves the use count at the number of slots at most; and at the end the block
 * has been freed, with every slot back on the ring. If ONLY is one of the five numbers below, only that assertion is
 * checked.
 *
 * Each of these definitions reverts one fix and breaks one of the assertions:
 *   TAKE_AFTER_LOCK   a take claims and reads its entry after it has released the lock
 *   NO_MARK           a take leaves the entry that it reads as it is
 *   LOOK_AGAIN        a return reads the use count again to decide whether to free the block
 * These break only the operations on two slots at once:
 *   ROOM_FOR_ONE      a take of two is admitted when the use count leaves room for one
 *   ONE_LOOKED_AT     a take of two looks for the mark in its first entry only
 *   ONE_MARKED        a take of two marks its first entry only
 *   MARKED_LATE       a take of two marks its second entry after it has released the lock
 *   STORED_LATE       a return of two lowers the use count before it stores its second slot
 *   TWO_LOOK_AGAIN    a return of two reads the use count again to decide whether to free the block
 */
#ifndef SLOTS
#define SLOTS 2
#endif
#ifndef THREADS
#define THREADS 3
#endif
#ifndef ROUNDS
#define ROUNDS 2
#endif
#ifndef LAST_ROUNDS
#define LAST_ROUNDS ROUNDS
#endif
#define TAKEN 255

#define ONE_OWNER 1
#define UNTOUCHED 2
#define FREED_ONCE 3
#define NOTHING_LOST 4
#define WITHIN_SIZE 5
#ifdef ONLY
#define ASSERT(which, condition) assert(which != ONLY || (condition))
#else
#define ASSERT(which, condition) assert(condition)
#endif

byte use_count = 0;
bool superseded = false;
byte take_position = 0;
byte return_position = 0;
byte ring[SLOTS];

bool locked = false;  /* the current-block mutex */
bool freed = false;
byte owners[SLOTS];
byte running = THREADS;

/* One access to the block. Three kinds of access share a step with what precedes or follows them, since no other
 * process can tell: the first under the lock with the locking, the last under it with the unlocking, and those to
 * take_position, which only the owner of the lock uses. */
#define TOUCH(access) d_step { ASSERT(UNTOUCHED, !freed); access }

inline release() { locked = false }

inline own(slot) {
  ASSERT(ONE_OWNER, slot < SLOTS && owners[slot] == 0);
  owners[slot]++
}

/* Locks, and reserves slots unless another block is current or the count is already at the limit. */
inline reserve(count, limit) {
  d_step {
    !locked -> locked = true;
    if
    :: superseded -> is_full = true
    :: else ->
      ASSERT(UNTOUCHED, !freed);
      is_full = use_count >= limit;
      use_count = use_count + count;
      ASSERT(WITHIN_SIZE, is_full || use_count <= SLOTS)
    fi
  }
}

inline unreserve(count) {
  d_step {
    if
    :: superseded
    :: else ->
      ASSERT(UNTOUCHED, !freed);
      use_count = use_count - count
    fi;
    release()
  }
}

/* The result is in slot: TAKEN when none is free. */
inline take(slot) {
  slot = TAKEN;
  reserve(1, SLOTS);
  if
  :: is_full -> unreserve(1)
  :: else ->
#ifdef TAKE_AFTER_LOCK
    release();
    TOUCH(position = take_position % SLOTS);
    TOUCH(slot = ring[position]);
#else
    TOUCH(position = take_position % SLOTS; slot = ring[position]);
#endif
    if
#ifdef TAKE_AFTER_LOCK
    :: slot == TAKEN -> TOUCH(use_count--)
#else
    :: slot == TAKEN -> unreserve(1)
#endif
    :: else ->
#ifdef TAKE_AFTER_LOCK
      TOUCH(ring[position] = TAKEN);
      TOUCH(take_position++; own(slot))
#elif defined(NO_MARK)
      TOUCH(take_position++; own(slot); release())
#else
      TOUCH(ring[position] = TAKEN; take_position++; own(slot); release())
#endif
    fi
  fi
}

#ifdef ROOM_FOR_ONE
#define LIMIT_OF_TWO SLOTS
#else
#define LIMIT_OF_TWO (SLOTS - 1)
#endif
#ifdef ONE_LOOKED_AT
#define IS_ONE_TAKEN (first == TAKEN)
#else
#define IS_ONE_TAKEN (first == TAKEN || second == TAKEN)
#endif

/* The results are in first and second: both TAKEN when no two are free. */
inline take_two() {
  reserve(2, LIMIT_OF_TWO);
  if
  :: is_full -> unreserve(2)
  :: else ->
    TOUCH(position = take_position; first = ring[position % SLOTS]);
    TOUCH(second = ring[(position + 1) % SLOTS]);
    if
    :: IS_ONE_TAKEN ->
      first = TAKEN;
      second = TAKEN;
      unreserve(2)
    :: else ->
#ifdef NO_MARK
      TOUCH(take_position = position + 2; own(first); own(second); release())
#else
      TOUCH(ring[position % SLOTS] = TAKEN);
#if defined(ONE_MARKED) || defined(MARKED_LATE)
      TOUCH(take_position = position + 2; own(first); own(second); release());
#ifdef MARKED_LATE
      TOUCH(ring[(position + 1) % SLOTS] = TAKEN)
#endif
#else
      TOUCH(ring[(position + 1) % SLOTS] = TAKEN; take_position = position + 2; own(first); own(second); release())
#endif
#endif
    fi
  fi
}

/* Lowers the count. The one that leaves none in use on a superseded block frees it. */
inline free_block() {
  ASSERT(FREED_ONCE, !freed);
  freed = true
}
inline lower_and_free(count) {
  d_step {
    ASSERT(UNTOUCHED, !freed);
    use_count = use_count - count;
    if
    :: superseded && use_count == 0 -> free_block()
    :: else
    fi
  }
}
inline lower_then_look_again(count) {
  TOUCH(use_count = use_count - count);
  TOUCH(is_last = superseded && use_count == 0);
  d_step {
    if
    :: is_last -> free_block()
    :: else
    fi
  }
}

inline give_back(slot) {
  TOUCH(owners[slot]--; position = return_position % SLOTS; return_position++);
  TOUCH(ring[position] = slot);
#ifdef LOOK_AGAIN
  lower_then_look_again(1)
#else
  lower_and_free(1)
#endif
}

inline give_back_two() {
  TOUCH(owners[first]--; owners[second]--; position = return_position; return_position = return_position + 2);
  TOUCH(ring[position % SLOTS] = first);
#ifndef STORED_LATE
  TOUCH(ring[(position + 1) % SLOTS] = second);
#endif
#ifdef TWO_LOOK_AGAIN
  lower_then_look_again(2)
#else
  lower_and_free(2)
#endif
#ifdef STORED_LATE
  ;
  TOUCH(ring[(position + 1) % SLOTS] = second)
#endif
}

proctype Thread(byte rounds) {
  byte first = TAKEN;
  byte second = TAKEN;
  byte position;
  bool is_full;
  bool is_last;
  do
  :: rounds == 0 -> break
  :: else ->
    rounds--;
    if
    :: take(first)
    :: take_two();
      if
      :: first == TAKEN ->
        take(first);
        take(second)
      :: else
      fi
    fi;
    if
    :: first != TAKEN && second != TAKEN -> give_back_two()
    :: true ->
      if
      :: second != TAKEN -> give_back(second)
      :: else
      fi;
      if
      :: first != TAKEN -> give_back(first)
      :: else
      fi
    fi;
    d_step {
      first = TAKEN;
      second = TAKEN;
      position = 0;
      is_full = false;
      is_last = false
    }
  od;
  running--
}

proctype Publisher() {
  byte i;
  byte on_ring = 0;
  d_step {
    !locked;
    superseded = true;
    if
    :: use_count == 0 -> free_block()
    :: else
    fi
  }
  /* When all threads have ended, nothing is lost. */
  running == 0;
  d_step {
    for (i : 0 .. SLOTS - 1) {
      if
      :: ring[i] != TAKEN -> on_ring = on_ring | (1 << ring[i])
      :: else
      fi
    }
    ASSERT(NOTHING_LOST,
           freed && use_count == 0 && take_position == return_position && on_ring == (1 << SLOTS) - 1)
  }
}

init {
  byte i;
  atomic {
    for (i : 0 .. SLOTS - 1) { ring[i] = i }
    for (i : 2 .. THREADS) { run Thread(ROUNDS) }
    run Thread(LAST_ROUNDS);
    run Publisher()
  }
}
