/** @file threads_and_locks.h
 * A thread and a lock, which C99 does not have. */
#ifndef THREADS_AND_LOCKS_H
#define THREADS_AND_LOCKS_H

#if defined(_WIN32)
#include <process.h>
#include <windows.h>

typedef SRWLOCK Lock;
#define LOCK_INITIALISER SRWLOCK_INIT

static inline void take_lock (Lock *lock) {
  AcquireSRWLockExclusive (lock);
}
static inline void release_lock (Lock *lock) {
  ReleaseSRWLockExclusive (lock);
}

typedef HANDLE Thread;
#define THREAD_BODY(name) unsigned __stdcall name (void *unused)

/* Returns 0 when the system cannot start a thread. */
static inline int start_thread (Thread *thread, unsigned (__stdcall *body) (void *)) {
  *thread = (HANDLE)_beginthreadex (NULL, 0, body, NULL, 0, NULL);
  return *thread != NULL;
}
static inline void join_thread (Thread thread) {
  WaitForSingleObject (thread, INFINITE);
  CloseHandle (thread);
}
#else
#include <pthread.h>

typedef pthread_mutex_t Lock;
#define LOCK_INITIALISER PTHREAD_MUTEX_INITIALIZER

static inline void take_lock (Lock *lock) {
  pthread_mutex_lock (lock);
}
static inline void release_lock (Lock *lock) {
  pthread_mutex_unlock (lock);
}

typedef pthread_t Thread;
#define THREAD_BODY(name) void *name (void *unused)

/* Returns 0 when the system cannot start a thread. */
static inline int start_thread (Thread *thread, void *(*body) (void *)) {
  return pthread_create (thread, NULL, body, NULL) == 0;
}
static inline void join_thread (Thread thread) {
  pthread_join (thread, NULL);
}
#endif

#endif
