#pragma once

#include "engine/quill3_api_parser2.h"

#include <concepts>
#include <string>
#include <vector>

/// Writes decoded values as text: numbers in decimal, `-` for an absent option, and of a record the members
/// that distinguish it in the tests.
struct show {
  static std::string text (const AString &v) { return v.to_std_string (); }
  static std::string text (const char *v) { return v; }
  template <std::integral Number>
  static std::string text (Number v) {
    if constexpr (std::is_same_v<Number, bool>)
      return v ? "true" : "false";
    else
      return std::to_string (v);
  }
  static std::string text (const Kelvane::fixed &v) { return std::to_string (v.raw); }
  template <class T>
  static std::string text (const AOption<T> &v) {
    return v.present ? text (v.value) : "-";
  }
  static std::string text (const QUILL3::ConfigurationItem &v) {
    return text (v.ConfigurationItemName) + "=" + text (v.ConfigurationItemEffectiveValue);
  }
  static std::string text (const QUILL3::ClipInfo &v) {
    return text (v.ClipID) + "/" + text (v.Title) + "/" + text (v.ClipLength) + "/" + text (v.ClipUUID);
  }
  static std::string text (const QUILL3::CompressionInfo &v) {
    return text (v.CompressionYSize) + "/" + text (v.CompressionASymbol);
  }
  static std::string text (const QUILL3::MeltItem &v) {
    return text (v.MeltElementID) + "/" + text (v.ClipID) + "/" + text (v.MeltLabel);
  }
  static std::string text (const QUILL3::MeltFlags &v) {
    return text (v.MeltClientID) + "/" + text (v.MeltFlagInhibitListNumbering);
  }
  static std::string text (const QUILL3::ListElement &v) {
    return text (v.ContentID.ClipID) + "/" + text (v.ListElementAtEnd);
  }
  static std::string text (const QUILL3::ChaseElement &v) {
    return text (v.ContentID.VClipID) + "/" + text (v.TcStartTrigger);
  }
  static std::string text (const QUILL3::Timecode &v) { return text (v.Valid) + "/" + text (v.FieldNumber); }
  static std::string text (const QUILL3::ChannelInformation &v) {
    return text (v.ClipID) + "/" + text (v.Angle);
  }
  static std::string text (const QUILL3::ListPlaybackIndex &v) { return text (v.ListIndex); }
  static std::string text (const QUILL3::ChasePlaybackIndex &v) { return text (v.ChaseIndex); }
  static std::string text (const QUILL3::DiskSpaceChange &v) {
    return text (v.TotalDiskSpace) + "/" + text (v.AvailableDiskSpace);
  }
  static std::string text (const QUILL3::Alert &v) {
    return text (v.AlertName) + "/" + text (v.AlertingLevel);
  }
  static std::string text (const QUILL3::Metadata &v) { return text (v.Key) + "=" + text (v.Value); }
  template <class T>
  static std::string text (const std::list<T> &v) {
    std::string all = "[";
    for (const T &one : v)
      all += (all.size () > 1 ? "," : "") + text (one);
    return all + "]";
  }
};

/// Overrides every handler of replies and reports, and adds a line to `calls` for each call: the name on the
/// wire and the values.
template <class Base>
class Recorder : public Base {
public:
  std::vector<std::string> calls;

protected:
#define REPLY(name, entry, ...)                                                                              \
  void on_##name (AString xid __VA_OPT__ (, LIST_OF (PARAMETER, __VA_ARGS__))) override {                    \
    note (#name, xid __VA_OPT__ (, LIST_OF (GIVEN, __VA_ARGS__)));                                           \
  }
#define REPORT(name, ...)                                                                                    \
  void on_##name (LIST_OF (PARAMETER, __VA_ARGS__)) override {                                               \
    note (#name, LIST_OF (GIVEN, __VA_ARGS__));                                                              \
  }
#include "engine/bodies.inc"

private:
  template <class... Values>
  void note (const char *name, const Values &...values) {
    std::string line = name;
    ((line += " " + show::text (values)), ...);
    calls.push_back (line);
  }
};
