/// The text parser: a small, strict subset of XML.
#pragma once

#include "xml/xml_names.h"
#include "xml/xml_tree.h"

/// Parses one element. It accepts start tags without attributes, end tags, empty-element tags, and text with
/// the five named entities. It refuses comments, declarations, CDATA sections, namespaces and numeric
/// character references. Names are an ASCII letter followed by ASCII letters, digits and `_`. Blanks around
/// names in tags and around the root are dropped. An element holds text, kept with its blanks, or child
/// elements with nothing but blanks between them. AChar::is_space says what is a blank, so every code point
/// from 256 up is one.
///
/// @param bad_result receives whether the text was refused; may be null
/// @param names the names that need no text of their own; may be null
/// @return the null tree when the text is refused
/// Threads: any. Cost: linear in the text; no limit on depth but memory, and no recursion.
XMLTree parse_xml_text (const AString &text, bool *bad_result = nullptr, const XMLNameTable *names = nullptr);

/// Replaces the five named entities, each once: `&amp;lt;` becomes `&lt;`. All other text passes through,
/// a bare `&` and unknown entities included. Text without `&` is returned as it is, sharing its store.
AString decode_entities (const AString &text);

/// Replaces `'`, `<`, `>`, `"` and `&` by their entities, and nothing else. Text without them is returned as
/// it is, sharing its store.
AString encode_entities (const AString &text);
