#pragma once

#include "hpp/scripted.h"

#include <initializer_list>
#include <string>

/// A server that accepts each request for a report and sends a first value at once.
class ReportingServer : public support::FakeServer {
public:
  ReportingServer () {
    answer_any ("<ok />");
    on ("channel_report_register", [] (const support::Command &command) {
      const std::string letter = support::text_of (command.document, "Channel");
      const std::string kind = support::text_of (command.document, "ChannelReportType");
      return support::reply_to (command, "<ok />") + support::report_of (present_value (kind, letter));
    });
  }

  void status (const std::string &letter, const std::string &word) { report (status_body (letter, word)); }
  void position (const std::string &letter, int fields) { report (position_body (letter, fields)); }
  void clip (const std::string &letter, const std::string &name) {
    report ("<channel_clipid><Channel>" + letter + "</Channel><ClipID>" + name +
            "</ClipID></channel_clipid>");
  }
  void speed (const std::string &letter, int parts) {
    report ("<channel_speed><Channel>" + letter + "</Channel><Speed>" + std::to_string (parts) +
            "</Speed></channel_speed>");
  }
  void information (const std::string &letter, int length, const std::string &loop, int angle, int mask,
                    int precued) {
    report (information_body (letter, length, loop, angle, mask, precued));
  }

private:
  static std::string status_body (const std::string &letter, const std::string &word) {
    return "<channel_status><Channel>" + letter + "</Channel><ChannelStatus>" + word +
           "</ChannelStatus></channel_status>";
  }
  static std::string position_body (const std::string &letter, int fields) {
    return "<channel_timecode><Channel>" + letter + "</Channel><ClipPosition>" + std::to_string (fields) +
           "</ClipPosition><DisplayTimecode><Valid>false</Valid></DisplayTimecode>"
           "<InputTimecode><Valid>false</Valid></InputTimecode></channel_timecode>";
  }
  static std::string information_body (const std::string &letter, int length, const std::string &loop,
                                       int angle, int mask, int precued) {
    return "<channel_info><Channel>" + letter +
           "</Channel><ChannelInformation><ClipID>NEWS0123</ClipID><ClipLength>" + std::to_string (length) +
           "</ClipLength><Loop>" + loop + "</Loop><AngleCount>4</AngleCount><Angle>" +
           std::to_string (angle) + "</Angle><EEStatus><SonyEditMask>" + std::to_string (mask) +
           "</SonyEditMask><AutoEE>false</AutoEE></EEStatus><PrecueCount>" + std::to_string (precued) +
           "</PrecueCount></ChannelInformation></channel_info>";
  }
  static std::string present_value (const std::string &kind, const std::string &letter) {
    if (kind == "status")
      return status_body (letter, "play");
    if (kind == "clipid")
      return "<channel_clipid><Channel>" + letter + "</Channel><ClipID>NEWS0123</ClipID></channel_clipid>";
    if (kind == "speed")
      return "<channel_speed><Channel>" + letter + "</Channel><Speed>98304</Speed></channel_speed>";
    if (kind == "timecode")
      return position_body (letter, 42);
    return information_body (letter, 1000, "pingpong", 2, 1023, 3);
  }
};
