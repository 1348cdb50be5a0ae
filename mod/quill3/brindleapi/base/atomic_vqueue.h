#pragma once

#include "base/atomic_tagged_pointer.h"
#include "base/atomic_unsigned.h"

struct AVQueueNode;

/// A queue of pointers for any number of producers and consumers, without locks. The caller owns what the
/// pointers point at. The nodes come from one free list of the process and return to it, never to the heap.
/// So a queue in steady use allocates nothing.
///
/// Threads: `push` and `pop` from any; construction and destruction while nobody else uses the queue. Values
/// of one producer come out in the order they went in.
class AVQueue {
public:
  AVQueue ();
  /// Drops the values that are left.
  ~AVQueue ();
  AVQueue (const AVQueue &) = delete;
  AVQueue &operator= (const AVQueue &) = delete;

  /// Puts a value at the end. @return how many were in the queue before.
  unsigned push (void *value);
  /// Takes the oldest value without waiting. @return it, or null when the queue is empty. A null value in the
  /// queue looks the same.
  // C78: doc/compatibility.md
  void *pop ();
  /// How many values are in the queue, at some moment during the call.
  unsigned length () const { return length_.load (); }

private:
  void link (AVQueueNode *node);
  void *unlink ();

  atomic_tagged_pointer head_; ///< a node whose value is gone; the oldest value is in its successor
  atomic_tagged_pointer tail_; ///< the last node, or one before it
  atomic_unsigned length_;     ///< raised when a value is in, lowered before one is taken out
};
