/* A block's ring of free slots, its use count and its superseding, as geometry/ObjectPoolBlock.h and
 * geometry/ObjectPool.h have them; for spin, which searches every interleaving of sequentially consistent steps.
 *
 * Threads take a slot and return it, some times each; one process supersedes the block at any moment. It is
 * asserted that no slot has two owners, that no step touches the freed block, that it is freed once, and at the
 * end that it has been, with every slot back on the ring.
 *
 * Each of these, defined, undoes one closing and must be found to fail:
 *   TAKE_AFTER_LOCK   a take claims and reads its entry when the lock is gone
 *   NO_MARK           a take leaves the entry that it reads as it is
 *   LOOK_AGAIN        a return decides by a second look at the use count whether to free the block
 */
#ifndef SLOTS
#define SLOTS 2
#endif
#ifndef THREADS
#define THREADS 3
#endif
#define ROUNDS 2
#define TAKEN 255

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
    assert(!freed);
    freed = true
  }
}

inline claim_and_read() {
  d_step {
    assert(!freed);
    position = take_position % SLOTS
  }
  d_step {
    assert(!freed);
    slot = ring[position]
  }
  if
  :: slot == TAKEN ->
    d_step {
      assert(!freed);
      use_count--
    }
  :: else ->
#ifndef NO_MARK
    d_step {
      assert(!freed);
      ring[position] = TAKEN
    }
#endif
    d_step {
      assert(!freed);
      take_position++
    }
  fi
}

/* Leaves the slot, or TAKEN when there is none to have. */
inline take() {
  slot = TAKEN;
  acquire();
  if
  :: superseded -> release()  /* another block is current */
  :: else ->
    d_step {
      assert(!freed);
      is_full = use_count >= SLOTS;
      use_count++
    }
    if
    :: is_full ->
      d_step {
        assert(!freed);
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
    assert(!freed);
    position = return_position % SLOTS;
    return_position++
  }
  d_step {
    assert(!freed);
    ring[position] = slot
  }
#ifdef LOOK_AGAIN
  d_step {
    assert(!freed);
    use_count--
  }
  d_step {
    assert(!freed);
    is_last = superseded && use_count == 0
  }
#else
  d_step {
    assert(!freed);
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
        assert(owners[slot] == 0);
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
  /* When all have ended, nothing is lost. */
  running == 0;
  assert(freed && use_count == 0 && take_position == return_position)
}

init {
  byte i;
  atomic {
    for (i : 0 .. SLOTS - 1) { ring[i] = i }
    for (i : 1 .. THREADS) { run Thread() }
    run Publisher()
  }
}
