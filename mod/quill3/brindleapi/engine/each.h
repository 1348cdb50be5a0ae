#pragma once

/// Applies a macro to each of one to four names, for the lines of replies.inc, reports.inc and commands.inc:
/// `EACH (M, c, a, b)` is `M (c, a), M (c, b)`.
#define EACH(macro, context, a, ...) macro (context, a) __VA_OPT__ (, EACH_3 (macro, context, __VA_ARGS__))
#define EACH_3(macro, context, a, ...) macro (context, a) __VA_OPT__ (, EACH_2 (macro, context, __VA_ARGS__))
#define EACH_2(macro, context, a, ...) macro (context, a) __VA_OPT__ (, EACH_1 (macro, context, __VA_ARGS__))
#define EACH_1(macro, context, a) macro (context, a)
