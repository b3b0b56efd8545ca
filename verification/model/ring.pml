/* Models a block's ring of free slots, its use count and its superseding, as in geometry/ObjectPoolBlock.h and
 * geometry/ObjectPool.h. spin searches every interleaving of its sequentially consistent steps.
 *
 * Each thread takes a slot and returns it ROUNDS times; one process supersedes the block at any moment. Four things are
 * asserted: no slot has two owners, no step touches the freed block, the block is freed once at most, and at the end it
 * has been freed, with every slot back on the ring. If ONLY is one of the four numbers below, only that
 * assertion is checked.
 *
 * Each of these definitions reverts one fix and breaks one of the assertions:
 *   TAKE_AFTER_LOCK   a take claims and reads its entry after it has released the lock
 *   NO_MARK           a take leaves the entry that it reads as it is
 *   LOOK_AGAIN        a return reads the use count again to decide whether to free the block
 */
#ifndef SLOTS
#define SLOTS 2
#endif
#ifndef THREADS
#define THREADS 3
#endif
#define ROUNDS 2
#define TAKEN 255

#define ONE_OWNER 1
#define UNTOUCHED 2
#define FREED_ONCE 3
#define NOTHING_LOST 4
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

inline acquire() { atomic { !locked -> locked = true } }
inline release() { locked = false }

inline free_block() {
  d_step {
    ASSERT(FREED_ONCE, !freed);
    freed = true
  }
}

inline claim_and_read() {
  d_step {
    ASSERT(UNTOUCHED, !freed);
    position = take_position % SLOTS
  }
  d_step {
    ASSERT(UNTOUCHED, !freed);
    slot = ring[position]
  }
  if
  :: slot == TAKEN ->
    d_step {
      ASSERT(UNTOUCHED, !freed);
      use_count--
    }
  :: else ->
#ifndef NO_MARK
    d_step {
      ASSERT(UNTOUCHED, !freed);
      ring[position] = TAKEN
    }
#endif
    d_step {
      ASSERT(UNTOUCHED, !freed);
      take_position++
    }
  fi
}

/* The result is in slot: TAKEN when none is free. */
inline take() {
  slot = TAKEN;
  acquire();
  if
  :: superseded -> release()  /* another block is current */
  :: else ->
    d_step {
      ASSERT(UNTOUCHED, !freed);
      is_full = use_count >= SLOTS;
      use_count++
    }
    if
    :: is_full ->
      d_step {
        ASSERT(UNTOUCHED, !freed);
        use_count--
      }
      release()
    :: else ->
#ifdef TAKE_AFTER_LOCK
      release();
      claim_and_read()
#else
      claim_and_read();
      release()
#endif
    fi
  fi
}

inline give_back() {
  d_step {
    ASSERT(UNTOUCHED, !freed);
    position = return_position % SLOTS;
    return_position++
  }
  d_step {
    ASSERT(UNTOUCHED, !freed);
    ring[position] = slot
  }
#ifdef LOOK_AGAIN
  d_step {
    ASSERT(UNTOUCHED, !freed);
    use_count--
  }
  d_step {
    ASSERT(UNTOUCHED, !freed);
    is_last = superseded && use_count == 0
  }
#else
  d_step {
    ASSERT(UNTOUCHED, !freed);
    is_last = superseded && use_count == 1;
    use_count--
  }
#endif
  if
  :: is_last -> free_block()
  :: else
  fi
}

proctype Thread() {
  byte round = 0;
  byte slot;
  byte position;
  bool is_full;
  bool is_last;
  do
  :: round == ROUNDS -> break
  :: else ->
    round++;
    take();
    if
    :: slot == TAKEN
    :: else ->
      d_step {
        ASSERT(ONE_OWNER, owners[slot] == 0);
        owners[slot]++
      }
      d_step { owners[slot]-- }
      give_back()
    fi
  od;
  running--
}

proctype Publisher() {
  bool is_empty;
  acquire();
  d_step {
    is_empty = use_count == 0;
    superseded = true
  }
  release();
  if
  :: is_empty -> free_block()
  :: else
  fi;
  /* When all threads have ended, nothing is lost. */
  running == 0;
  ASSERT(NOTHING_LOST, freed && use_count == 0 && take_position == return_position)
}

init {
  byte i;
  atomic {
    for (i : 0 .. SLOTS - 1) { ring[i] = i }
    for (i : 1 .. THREADS) { run Thread() }
    run Publisher()
  }
}
