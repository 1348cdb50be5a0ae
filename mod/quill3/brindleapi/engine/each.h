#pragma once

/// Applies a macro to each of one to four names, for the lines of replies.inc, reports.inc and commands.inc:
/// `EACH (M, c, a, b)` is `M (c, a), M (c, b)`, and `EACH_DO (M, c, a, b)` is `M (c, a) M (c, b)`.
#define EACH(macro, context, ...)                                                                            \
  EACH_PICK (__VA_ARGS__, EACH_4, EACH_3, EACH_2, EACH_1, ) (macro, context, __VA_ARGS__)
#define EACH_DO(macro, context, ...)                                                                         \
  EACH_PICK (__VA_ARGS__, EACH_DO_4, EACH_DO_3, EACH_DO_2, EACH_DO_1, ) (macro, context, __VA_ARGS__)

#define EACH_PICK(a, b, c, d, chosen, ...) chosen
#define EACH_1(macro, context, a) macro (context, a)
#define EACH_2(macro, context, a, b) macro (context, a), macro (context, b)
#define EACH_3(macro, context, a, b, c) EACH_2 (macro, context, a, b), macro (context, c)
#define EACH_4(macro, context, a, b, c, d) EACH_3 (macro, context, a, b, c), macro (context, d)
#define EACH_DO_1(macro, context, a) macro (context, a)
#define EACH_DO_2(macro, context, a, b) macro (context, a) macro (context, b)
#define EACH_DO_3(macro, context, a, b, c) EACH_DO_2 (macro, context, a, b) macro (context, c)
#define EACH_DO_4(macro, context, a, b, c, d) EACH_DO_3 (macro, context, a, b, c) macro (context, d)
