#include "base/atomic_vqueue.h"

#include "base/kelvane_assert.h"
#include "base/runonce.h"

#include <atomic>

struct AVQueueNode {
  atomic_tagged_pointer next;
  std::atomic<void *> value = nullptr;
  std::atomic<AVQueueNode *> free_link = nullptr;
};

namespace {

AVQueueNode *node_of (TaggedPointer pointer) {
  return reinterpret_cast<AVQueueNode *> (static_cast<uintptr_t> (pointer.pointer));
}

/// What replaces @p before when it is to point at @p node.
TaggedPointer successor (TaggedPointer before, AVQueueNode *node) {
  return {reinterpret_cast<uintptr_t> (node), before.generation + 1};
}

/// The stack of nodes that are in no queue. Nodes are never freed, so a thread that still reads a node which
/// was removed reads valid memory.
class FreeNodes {
public:
  void push (AVQueueNode *node) {
    TaggedPointer top;
    do {
      top = top_.load ();
      node->free_link = node_of (top);
    } while (!top_.compare_and_swap (top, successor (top, node)));
  }

  AVQueueNode *pop () {
    for (;;) {
      const TaggedPointer top = top_.load ();
      AVQueueNode *node = node_of (top);
      if (node == nullptr || top_.compare_and_swap (top, successor (top, node->free_link)))
        return node;
    }
  }

private:
  atomic_tagged_pointer top_;
};

FreeNodes &free_nodes () {
  static FreeNodes &nodes = *new FreeNodes;
  return nodes;
}

// Makes the list when the library is loaded, unless a queue has needed it earlier.
const RunOnce free_nodes_at_load ([] { free_nodes (); });

AVQueueNode *take_node () {
  AVQueueNode *node = free_nodes ().pop ();
  return node != nullptr ? node : new AVQueueNode;
}

// Clearing the successor raises its generation, so that a thread which is about to link behind this node
// fails.
void release_node (AVQueueNode *node) {
  node->next.store (successor (node->next.load (), nullptr));
  node->value = nullptr;
  free_nodes ().push (node);
}

} // namespace

AVQueue::AVQueue () {
  const TaggedPointer dummy = successor ({}, take_node ());
  head_.store (dummy);
  tail_.store (dummy);
}

AVQueue::~AVQueue () {
  while (length_.load () != 0)
    pop ();
  release_node (node_of (head_.load ()));
}

unsigned AVQueue::push (void *value) {
  AVQueueNode *node = take_node ();
  if (!KELVANE_ASSERT (node->next.load ().pointer == 0))
    node = new AVQueueNode;
  node->value = value;
  link (node);
  return length_++;
}

void AVQueue::link (AVQueueNode *node) {
  for (;;) {
    const TaggedPointer tail = tail_.load ();
    const TaggedPointer next = node_of (tail)->next.load ();
    if (tail != tail_.load ())
      continue;
    if (next.pointer != 0)
      tail_.compare_and_swap (tail, successor (tail, node_of (next)));
    else if (node_of (tail)->next.compare_and_swap (next, successor (next, node))) {
      tail_.compare_and_swap (tail, successor (tail, node)); // after a failure the next thread does this
      return;
    }
  }
}

void *AVQueue::pop () {
  // A thread that has lowered the length finds a node.
  return length_.subtract_with_floor (1, 0) ? unlink () : nullptr;
}

void *AVQueue::unlink () {
  for (;;) {
    const TaggedPointer head = head_.load ();
    const TaggedPointer tail = tail_.load ();
    const TaggedPointer next = node_of (head)->next.load ();
    if (head != head_.load ())
      continue;
    if (next.pointer == 0) {
      KELVANE_ASSERT (0); // the length promised a node
      return nullptr;
    }
    if (head.pointer == tail.pointer) {
      tail_.compare_and_swap (tail, successor (tail, node_of (next)));
      continue;
    }
    void *value = node_of (next)->value.load (); // read before another consumer can let go of it
    if (head_.compare_and_swap (head, successor (head, node_of (next)))) {
      release_node (node_of (head));
      return value;
    }
  }
}
