"""Every command of the protocol, with all its arguments: none is unknown, each has its answer by hand."""

import support

A = "<Channel>A</Channel>"
SET = "<ChannelSet><Channel>A</Channel><Channel>B</Channel></ChannelSet>"
LATENCY = "<MinLatency />"
ITEM = ("<ListElement><ContentID><ClipID>BARS</ClipID></ContentID><GotoPosition>10</GotoPosition>"
        "<ClipPosition>20</ClipPosition><Speed>1X</Speed><Angle>0</Angle><ListElementAtStart>play</ListElementAtStart>"
        "<ListElementAtEnd>take</ListElementAtEnd><Transition><TransitionType>dissolve</TransitionType>"
        "<TransitionDuration>5</TransitionDuration></Transition></ListElement>")
CHASE = ("<ChaseElement><ContentID><ClipID>BARS</ClipID></ContentID><GotoPosition>10</GotoPosition>"
         "<ClipPosition>20</ClipPosition><Speed>1X</Speed><Angle>0</Angle><ChaseElementAtEnd>pause</ChaseElementAtEnd>"
         "<ClipStartOffset>0</ClipStartOffset><TcStartTrigger>1000</TcStartTrigger></ChaseElement>")
VIDEO = "<TrackSet><TrackType>video</TrackType></TrackSet>"
V = "<VClipID>V</VClipID>"
OK = "<ok />"

# Command, arguments, and the answer, or how it starts when it ends in "...". In an order that makes sense.
TABLE = [
    ("report_register", "<ReportType>clip_change</ReportType>", OK),
    ("report_unregister", "<ReportType>clip_change</ReportType>", OK),
    ("reports_register", "<ReportSet><ReportType>melt</ReportType><ReportType>alerts</ReportType></ReportSet>", OK),
    ("reports_unregister", "<ReportSet><ReportType>melt</ReportType></ReportSet>", OK),
    ("channel_report_register", A + "<ChannelReportType>status</ChannelReportType>", OK),
    ("channel_report_unregister", A + "<ChannelReportType>status</ChannelReportType>", OK),
    ("channel_reports_register", SET + "<ChannelReportSet><ChannelReportType>info</ChannelReportType>"
     "</ChannelReportSet>", OK),
    ("channel_reports_unregister", SET + "<ChannelReportSet><ChannelReportType>info</ChannelReportType>"
     "</ChannelReportSet>", OK),
    ("cue_clip", A + "<ClipID>BARS</ClipID><Loop>loop</Loop><GotoPosition>5</GotoPosition><ClipPosition>900"
     "</ClipPosition><Angle>0</Angle><Playback>field</Playback><Speed>1X</Speed><ClipScope>clip</ClipScope>"
     "<LoopIn>3</LoopIn><LoopOut>800</LoopOut><BlackOnCue />", OK),
    ("jog", A + "<JogDistance>-4</JogDistance>" + LATENCY, OK),
    ("gang_jog", SET + "<JogDistance>4</JogDistance>" + LATENCY, OK),
    ("gotocmd", A + "<GotoPosition>7</GotoPosition>" + LATENCY, OK),
    ("gang_gotocmd", SET + "<GotoPosition>7</GotoPosition>" + LATENCY, OK),
    ("go_at", A + "<GotoPosition>7</GotoPosition><Speed>-1X</Speed>" + LATENCY, OK),
    ("gang_go_at", SET + "<GotoPosition>7</GotoPosition><Speed>1X</Speed>" + LATENCY, OK),
    ("insert_edit", A + "<SonyEditMask>0</SonyEditMask>", OK),
    ("gang_insert_edit", SET + "<SonyEditMask>0</SonyEditMask>", OK),
    ("ee", A + "<SonyEditMask>1023</SonyEditMask><AutoEE>false</AutoEE>", OK),
    ("gang_ee", SET + "<SonyEditMask>0</SonyEditMask><AutoEE>true</AutoEE>", OK),
    ("play", A + "<Speed>0.5X</Speed>" + LATENCY, OK),
    ("gang_play", SET + "<Speed>200X</Speed>" + LATENCY, OK),
    ("stop", A + LATENCY, OK),
    ("gang_stop", SET + LATENCY, OK),
    ("precue", A + "<ClipID>COUNTDOWN</ClipID><PrecueCondition>explicit_switch</PrecueCondition><GotoPosition>1"
     "</GotoPosition><ClipLength>10</ClipLength><Angle>0</Angle><LoopIn>1</LoopIn><LoopOut>5</LoopOut>"
     "<Loop>off</Loop>" + LATENCY, OK),
    ("precue_activate", A, OK),
    ("precue_clear", A, OK),
    ("gang_precue_activate", SET, "<error><ErrorMessage>Nothing is precued on channel A</ErrorMessage>..."),
    ("set_loop", A + "<Loop>pingpong</Loop>", OK),
    ("set_loop_in", A + "<LoopIn>2</LoopIn>", OK),
    ("clear_loop_in", A, OK),
    ("set_loop_out", A + "<LoopOut>50</LoopOut>", OK),
    ("clear_loop_out", A, OK),
    ("set_out_point", A + "<ClipPosition>60</ClipPosition>", OK),
    ("clear_out_point", A, OK),
    ("iso_angle", A + "<Angle>0</Angle>", OK),
    ("go_live", A + "<ClipID>BARS</ClipID><Angle>0</Angle><TimeDelay>100</TimeDelay>" + LATENCY, OK),
    ("take", A + "<TransitionType>dissolve</TransitionType><TransitionDuration>20</TransitionDuration>"
     "<FollowSpeed>smart</FollowSpeed>", "<error><ErrorMessage>Nothing is precued on channel A</ErrorMessage>..."),
    ("steal_channel", A + "<PlayOrRecord>play</PlayOrRecord><StealClient>desk</StealClient>",
     "<steal_info><StealSwapped>false</StealSwapped></steal_info>"),
    ("unsteal_channel", "", OK),
    ("get_current_timecode", "<Channel>B</Channel>",
     "<channel_current_timecode><Channel>B</Channel><DisplayTimecode><Valid>true</Valid>..."),
    ("unload", A, OK),
    ("download_clipids", "<DirectoryName>SPORT</DirectoryName>",
     "<clipid><ClipID>SPORT/GOAL</ClipID></clipid><ok />"),
    ("download_directory_names", "<DirectoryName />", "<directory_name><DirectoryName>NEWS</DirectoryName>"
     "</directory_name><directory_name><DirectoryName>SPORT</DirectoryName></directory_name><ok />"),
    ("get_clip_info", "<ClipID>BARS</ClipID>", "<clipinfo><ClipInfo><ClipID>BARS</ClipID>..."),
    ("clip_exists", "<ClipID>BARS</ClipID>", "<clipexists><ClipID>BARS</ClipID><Exists>true</Exists></clipexists>"),
    ("create_clip", "<ClipID>NEW</ClipID>" + VIDEO + "<ClipLength>100</ClipLength><Channel>C</Channel>", OK),
    ("create_child_clip", "<ClipID>CHILD</ClipID><ParentClipID>NEW</ParentClipID><Angle>0</Angle>", OK),
    ("modify_clip_attributes", "<ClipID>NEW</ClipID><ClipAttrChange><ID8>NEW1</ID8><Title>t</Title>"
     "<Creator>c</Creator><Project>p</Project><Playback>f12</Playback><Interp>off</Interp><Loop>loopto</Loop>"
     "<LoopOut>80</LoopOut><LoopIn>10</LoopIn><TimecodeSource>striped</TimecodeSource><StripeTimecode>"
     "<Valid>true</Valid><VideoStandard>1080_50i</VideoStandard><FieldNumber>-5</FieldNumber><DropFrameFlag>ndf"
     "</DropFrameFlag></StripeTimecode><MetadataList><Metadata><Key>k</Key><Value>v</Value></Metadata></MetadataList>"
     "<KeyList><Key>gone</Key></KeyList><TrimStart>4</TrimStart><TrimEnd>6</TrimEnd><TrackAttrVector><TrackAttr>"
     "<TrackType>video</TrackType><TrimStart>2</TrimStart></TrackAttr></TrackAttrVector><Frame0Timecode><FieldNumber>9"
     "</FieldNumber><DropFrameFlag>df</DropFrameFlag></Frame0Timecode></ClipAttrChange>", OK),
    ("rename_clip", "<FromID>CHILD</FromID><ToID>NEWS/CHILD</ToID>", OK),
    ("delete_clip", "<ClipID>NEWS/CHILD</ClipID>", OK),
    ("create_directory", "<DirectoryName>OLD</DirectoryName>", OK),
    ("rename_dir", "<FromDir>OLD</FromDir><ToDir>FRESH</ToDir>", OK),
    ("get_volatile_file_info", "<ClipID>NEW</ClipID>", "<volatile_file_info><KeyList><Key>fields 100</Key>"
     "<Key>bytes 26214400</Key></KeyList></volatile_file_info><ok />"),
    ("get_computer_name", "", "<computername><ComputerName>SIMULATOR</ComputerName></computername>"),
    ("get_video_standard", "", "<video_standard><VideoStandard>1080_59_94i</VideoStandard><VideoRate>59_94"
     "</VideoRate><VideoResolution>1080i</VideoResolution></video_standard>"),
    ("get_disk_usage", "", "<disk_usage><TotalDiskSpace>20000000000000</TotalDiskSpace><AvailableDiskSpace>..."),
    ("get_reference_source", "", "<reference_source><ReferenceSource>freerun</ReferenceSource></reference_source>"),
    ("get_configuration", "", "<configuration_item><ConfigurationItem><ConfigurationItemName>ComputerName"
     "</ConfigurationItemName><ConfigurationItemAccess>eng</ConfigurationItemAccess>..."),
    ("set_configuration", "<ConfigurationItemName>OperatorMessage</ConfigurationItemName>"
     "<ConfigurationItemValue>hello</ConfigurationItemValue>", OK),
    ("get_one_configuration", "<ConfigurationItemName>OperatorMessage</ConfigurationItemName>",
     "<one_configuration_item><ConfigurationItem><ConfigurationItemName>OperatorMessage</ConfigurationItemName>"
     "<ConfigurationItemAccess>user</ConfigurationItemAccess><ConfigurationItemEffectiveValue>hello"
     "</ConfigurationItemEffectiveValue><ConfigurationItemBootValue /><ConfigurationItemSavedValue>hello"
     "</ConfigurationItemSavedValue><ConfigurationItemAllowedValues></ConfigurationItemAllowedValues>"
     "</ConfigurationItem></one_configuration_item>"),
    ("get_version_info", "", "<version_info><SVNVersion>1</SVNVersion><SVNPath>orva-simulator</SVNPath>"
     "</version_info>"),
    ("debug_label", "<DebugString>here</DebugString>", OK),
    ("get_compression_info", "", "<compression_info><CompressionInfo><CompressionYSize>131072</CompressionYSize>..."),
    ("download_melts", "", OK),
    ("list_save_start", "<ListID>EVENING</ListID>", OK),
    ("list_save_element", ITEM, OK),
    ("list_save_end", "", OK),
    ("download_listids", "", "<listid><ListID>EVENING</ListID></listid><ok />"),
    ("download_list", "<ListID>EVENING</ListID>", "<list_element>" + ITEM + "</list_element><ok />"),
    ("list_rename", "<ListFromID>EVENING</ListFromID><ListToID>NIGHT</ListToID>", OK),
    ("list_load", A + "<ListID>NIGHT</ListID><ListPlayMode>single_channel</ListPlayMode><Transition>"
     "<TransitionType>cut</TransitionType></Transition>", OK),
    ("list_insert", A + "<ListIndex>1</ListIndex>" + ITEM, OK),
    ("list_play_modify_item", A + "<ListIndex>1</ListIndex><ListElementChange><ListElementAtStart>pause"
     "</ListElementAtStart><ListElementAtEnd>pause</ListElementAtEnd><Transition><TransitionType>cut</TransitionType>"
     "</Transition></ListElementChange>", OK),
    ("list_bed", A + ITEM, OK),
    ("list_set_loop", A + "<Loop>loop</Loop>", OK),
    ("list_play_now", A + "<ListIndex>0</ListIndex><Roll>roll</Roll><JogDistance>3</JogDistance>", OK),
    ("list_play_next", A + "<ListIndex>1</ListIndex><Roll>cueonly</Roll>", OK),
    ("list_take", A, OK),
    ("list_play_reorder_start", A, OK),
    ("list_play_reorder_item", "<ListIndex>1</ListIndex>", OK),
    ("list_play_reorder_finish", "<ListIndex>0</ListIndex>", OK),
    ("list_play_clear_modified", A, OK),
    ("list_remove_item", A + "<ListIndex>1</ListIndex>", OK),
    ("list_unload", A, OK),
    ("list_delete", "<ListID>NIGHT</ListID>", OK),
    ("chase_save_start", "<ChaseID>SHOW</ChaseID>", OK),
    ("chase_save_element", CHASE, OK),
    ("chase_save_end", "", OK),
    ("download_chaseids", "", "<chaseid><ChaseID>SHOW</ChaseID></chaseid><ok />"),
    ("download_chase", "<ChaseID>SHOW</ChaseID>", "<chase_element>" + CHASE + "</chase_element><ok />"),
    ("chase_rename", "<ChaseFromID>SHOW</ChaseFromID><ChaseToID>GALA</ChaseToID>", OK),
    ("chase_load", "<Channel>D</Channel><ChaseID>GALA</ChaseID>", OK),
    ("chase_insert", "<Channel>D</Channel><ChaseIndex>0</ChaseIndex>" + CHASE, OK),
    ("chase_play_modify_item", "<Channel>D</Channel><ChaseIndex>0</ChaseIndex><ChaseElementChange>"
     "<ChaseElementAtEnd>black</ChaseElementAtEnd><TcStartTrigger>5</TcStartTrigger><ClipStartOffset>1"
     "</ClipStartOffset></ChaseElementChange>", OK),
    ("sending_chase_ltcin", "<Timecode><Valid>true</Valid><VideoStandard>1080_59_94i</VideoStandard>"
     "<FieldNumber>1003</FieldNumber><DropFrameFlag>df</DropFrameFlag></Timecode>", OK),
    ("chase_play_reorder_start", "<Channel>D</Channel>", OK),
    ("chase_play_reorder_item", "<ChaseIndex>1</ChaseIndex>", OK),
    ("chase_play_reorder_finish", "<ChaseIndex>0</ChaseIndex>", OK),
    ("chase_play_clear_modified", "<Channel>D</Channel>", OK),
    ("chase_remove_item", "<Channel>D</Channel><ChaseIndex>1</ChaseIndex>", OK),
    ("chase_unload", "<Channel>D</Channel>", OK),
    ("chase_delete", "<ChaseID>GALA</ChaseID>", OK),
    ("watch_metadata_database", "<MetadataDatabase>db</MetadataDatabase><MetadataPrefix>p/</MetadataPrefix>", OK),
    ("unwatch_metadata_database", "<MetadataDatabase>db</MetadataDatabase>", OK),
    ("metadata_set", "<MetadataDatabase>db</MetadataDatabase><MetadataList><Metadata><Key>k</Key><Value>v</Value>"
     "</Metadata></MetadataList><MetadataPrefix>p/</MetadataPrefix>", OK),
    ("download_metadata", "<MetadataDatabase>db</MetadataDatabase><MetadataPrefix>p/</MetadataPrefix>",
     "<metadata><MetadataDatabase>db</MetadataDatabase><MetadataPrefix>p/</MetadataPrefix><MetadataList><Metadata>"
     "<Key>k</Key><Value>v</Value></Metadata></MetadataList></metadata><ok />"),
    ("metadata_erase", "<MetadataDatabase>db</MetadataDatabase><KeyList><Key>k</Key></KeyList>"
     "<MetadataPrefix>p/</MetadataPrefix>", OK),
    ("vclip_create", V + "<ClipLength>100</ClipLength>", OK),
    ("vclip_modification_start", V, OK),
    ("vclip_cfg_tracks", V + "<ClipID>BARS</ClipID>" + VIDEO, OK),
    ("vclip_add_segment", V + "<ClipID>BARS</ClipID><ClipPosition>5</ClipPosition>" + VIDEO +
     "<VClipPosition>0</VClipPosition><ClipLength>50</ClipLength><Speed>1X</Speed>", OK),
    ("vclip_clear_segment", V + VIDEO + "<VClipPosition>10</VClipPosition><ClipLength>5</ClipLength>", OK),
    ("vclip_ripple", V + VIDEO + "<VClipPosition>20</VClipPosition><VClipDistance>-5</VClipDistance>", OK),
    ("vclip_track_enable", V + VIDEO, OK),
    ("vclip_modification_end", V, OK),
    ("vclip_free", V, OK),
    ("export_start", "", OK),
    ("export_add", "<ClipID>BARS</ClipID><Filename>/out</Filename><ClipPosition>0</ClipPosition>"
     "<ClipLength>50</ClipLength><Angle>0</Angle>", OK),
    ("export_end", "", OK),
    ("export_initiate", A, OK),
    ("userdict_set", "<Key>k</Key><Value>v</Value>", OK),
    ("userdict_own", "<Key>mine</Key><Value>v</Value>", OK),
    ("userdict_watch", "<Key>k</Key>", OK),
    ("userdict_unwatch", "<Key>k</Key>", OK),
    ("userdict_erase", "<Key>k</Key>", OK),
    ("sync", "", OK),
    ("log", "<LogFilename>f.cpp</LogFilename><LogLine>1</LogLine><LogClient>c</LogClient><LogText>t</LogText>"
     "<LogError />", OK),
]


class EveryCommand(support.Case):
    def test_there_are_127(self):
        self.assertEqual(len(TABLE), 127)
        self.assertEqual(len(set(name for name, _, _ in TABLE)), 127)

    def test_each_has_its_answer(self):
        client = self.client()
        for name, arguments, expected in TABLE:
            with self.subTest(command=name):
                answer = "".join(client.ask("<%s>%s</%s>" % (name, arguments, name)))
                if expected.endswith("..."):
                    self.assertEqual(answer[:len(expected) - 3], expected[:-3])
                else:
                    self.assertEqual(answer, expected)

    def test_missing_and_strange_arguments_are_worded_for_each(self):
        client = self.client()
        for name, arguments, _ in TABLE:
            with self.subTest(command=name):
                strange = client.ask("<%s><Strange>1</Strange></%s>" % (name, name))
                self.assertEqual(strange, ["<error><ErrorMessage>Tag Strange is not allowed in %s</ErrorMessage>"
                                           "<ErrorCode>general</ErrorCode></error>" % name])
                text = client.ask("<%s>text</%s>" % (name, name))
                self.assertEqual(text, ["<error><ErrorMessage>%s holds text instead of elements</ErrorMessage>"
                                        "<ErrorCode>general</ErrorCode></error>" % name])
