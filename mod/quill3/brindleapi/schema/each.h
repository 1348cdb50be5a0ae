#pragma once

/// Macros that apply a macro to each of a list of names: `EACH (M, a, b)` is `M (a) M (b)`, and
/// `LIST_OF (M, a, b)` is `M (a), M (b)`. Both are empty when the list is. Room for 48 names.
#define EACH(macro, ...) __VA_OPT__ (EXPAND (EACH_STEP (macro, __VA_ARGS__)))
#define EACH_STEP(macro, first, ...) macro (first) __VA_OPT__ (EACH_AGAIN PARENTHESES (macro, __VA_ARGS__))
#define EACH_AGAIN() EACH_STEP

#define LIST_OF(macro, ...) __VA_OPT__ (EXPAND (LIST_OF_STEP (macro, __VA_ARGS__)))
#define LIST_OF_STEP(macro, first, ...)                                                                      \
  macro (first) __VA_OPT__ (, LIST_OF_AGAIN PARENTHESES (macro, __VA_ARGS__))
#define LIST_OF_AGAIN() LIST_OF_STEP

// A macro does not expand inside its own expansion. Each step therefore ends in a call that only the next
// scan carries out, and EXPAND makes the scans.
#define PARENTHESES ()
#define EXPAND(...) EXPAND_16 (EXPAND_16 (EXPAND_16 (__VA_ARGS__)))
#define EXPAND_16(...) EXPAND_4 (EXPAND_4 (EXPAND_4 (EXPAND_4 (__VA_ARGS__))))
#define EXPAND_4(...) EXPAND_1 (EXPAND_1 (EXPAND_1 (EXPAND_1 (__VA_ARGS__))))
#define EXPAND_1(...) __VA_ARGS__

/// The names inside of parentheses: `NAMES (a, b)` is `a, b`.
#define NAMES(...) __VA_ARGS__
