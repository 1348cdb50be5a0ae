#pragma once

#include "schema/records.h"

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"

/// Commands that switch the server's reports on and off for this connection. See commands.h.
namespace QUILL3::command {

/// Asks for one kind of server-wide report.
struct report_register {
  uint32_t ReportType{}; ///< enumeration ReportType
};
inline constexpr Field report_register_rows[] = {FIELD (report_register, ReportType)};
RECORD (report_register, report_register_rows);

/// No more of one kind of server-wide report.
struct report_unregister {
  uint32_t ReportType{}; ///< enumeration ReportType
};
inline constexpr Field report_unregister_rows[] = {FIELD (report_unregister, ReportType)};
RECORD (report_unregister, report_unregister_rows);

/// Asks for several kinds of server-wide reports.
struct reports_register {
  QUILL3::ReportSet ReportSet{};
};
inline constexpr Field reports_register_rows[] = {FIELD (reports_register, ReportSet)};
RECORD (reports_register, reports_register_rows);

/// No more of several kinds of server-wide reports.
struct reports_unregister {
  QUILL3::ReportSet ReportSet{};
};
inline constexpr Field reports_unregister_rows[] = {FIELD (reports_unregister, ReportSet)};
RECORD (reports_unregister, reports_unregister_rows);

/// Asks for one kind of report of one channel.
struct channel_report_register {
  uint32_t Channel{};           ///< enumeration Channel
  uint32_t ChannelReportType{}; ///< enumeration ChannelReportType
};
inline constexpr Field channel_report_register_rows[] = {FIELD (channel_report_register, Channel),
                                                         FIELD (channel_report_register, ChannelReportType)};
RECORD (channel_report_register, channel_report_register_rows);

/// No more of one kind of report of one channel.
struct channel_report_unregister {
  uint32_t Channel{};           ///< enumeration Channel
  uint32_t ChannelReportType{}; ///< enumeration ChannelReportType
};
inline constexpr Field channel_report_unregister_rows[] = {
    FIELD (channel_report_unregister, Channel), FIELD (channel_report_unregister, ChannelReportType)};
RECORD (channel_report_unregister, channel_report_unregister_rows);

/// Asks for several kinds of reports of several channels.
struct channel_reports_register {
  QUILL3::ChannelSet ChannelSet{};
  QUILL3::ChannelReportSet ChannelReportSet{};
};
inline constexpr Field channel_reports_register_rows[] = {FIELD (channel_reports_register, ChannelSet),
                                                          FIELD (channel_reports_register, ChannelReportSet)};
RECORD (channel_reports_register, channel_reports_register_rows);

/// No more of several kinds of reports of several channels.
struct channel_reports_unregister {
  QUILL3::ChannelSet ChannelSet{};
  QUILL3::ChannelReportSet ChannelReportSet{};
};
inline constexpr Field channel_reports_unregister_rows[] = {
    FIELD (channel_reports_unregister, ChannelSet), FIELD (channel_reports_unregister, ChannelReportSet)};
RECORD (channel_reports_unregister, channel_reports_unregister_rows);

} // namespace QUILL3::command

#pragma GCC diagnostic pop
