// What "tevronctl dissector" writes, loaded by Wireshark's own program for terminals.

#include <QRegularExpression>
#include <QStandardPaths>

#include "cli/capture_file.h"
#include "cli/commands_fixture.h"
#include "support/socket_peer.h"
#include "support/test_keys.h"

namespace {

using kavel::lidar::testing::SocketPeer;
using kavel::lidar::testing::TcpEnd;
using Link = CaptureFile::Link;

constexpr uint16_t kLidarPort = 9347;
constexpr uint16_t kClientPort = 40000;

class Dissector : public Commands {
 protected:
  void SetUp() override {
    if (QStandardPaths::findExecutable("tshark").isEmpty()) {
      GTEST_SKIP() << "tshark is not installed: the dissector is not tried";
    }
    Write({});
  }

  /// Writes it to "tevron.lua"; what it said meanwhile.
  static QByteArray Write(const QStringList& options) {
    const Said written(0, QStringList{"dissector"} + options);
    std::ofstream("tevron.lua", std::ios::binary) << written.out().toStdString();
    return written.err();
  }

  /// The lines that tshark prints of the capture. Whatever it holds, no line of the dissector
  /// fails.
  static QStringList Shown(const CaptureFile& capture, const QStringList& options) {
    OwnedProcess tshark;
    tshark.start("tshark",
                 QStringList{"-X", "lua_script:tevron.lua", "-o",
                             R"x(uat:user_dlts:"User 0 (DLT=147)","tevron_serial","0","","0","")x",
                             "-2", "-r", QString::fromStdString(capture.path())} +
                     options);
    EXPECT_TRUE(tshark.waitForFinished(60000));
    const QByteArray err = tshark.readAllStandardError();
    EXPECT_EQ(tshark.exitCode(), 0) << err.toStdString();
    EXPECT_FALSE(err.contains("Lua")) << err.toStdString();
    const QString out = QString::fromUtf8(tshark.readAllStandardOutput());
    EXPECT_FALSE(out.contains("Lua Error")) << out.mid(out.indexOf("Lua Error"), 200).toStdString();
    return out.split('\n', Qt::SkipEmptyParts);
  }

  /// A line a packet: its words, the packet that asked, and what is remarkable.
  static QStringList Words(const CaptureFile& capture, const QStringList& options = {}) {
    QStringList words;
    for (const QString& line :
         Shown(capture, QStringList{"-T", "fields", "-E", "separator=|", "-e", "_ws.col.Info", "-e",
                                    "tevron.request_in", "-e", "_ws.expert.message"} +
                            options)) {
      const QStringList parts = line.split('|');
      words.append(parts[0] + (parts[1].isEmpty() ? "" : " <- " + parts[1]) +
                   (parts[2].isEmpty() ? "" : " {" + parts[2] + "}"));
    }
    return words;
  }
};

/// Stands between a client and a lidar, hands on one exchange after the other, and writes them
/// down.
class Recorder {
 public:
  Recorder(CaptureFile* capture, uint16_t lidar_port)
      : capture_(*capture),
        lidar_port_(lidar_port),
        peer_([this](TcpEnd& client) { Serve(client); }) {}

  QStringList At(const QString& model) const {
    return {"--model", model, "--host", "127.0.0.1:" + QString::number(peer_.port())};
  }

 private:
  static Bytes Frame(TcpEnd& from) {
    const Bytes header = from.Read(8);
    const size_t length = header.size() < 8 ? 0 : size_t{header[6]} << 8 | header[7];
    return length == 0 ? header : header + from.Read(length);
  }
  void Serve(TcpEnd& client) {
    TcpEnd lidar = TcpEnd::To(lidar_port_);
    ++client_port_;
    for (Bytes frame = Frame(client); frame.size() >= 8; frame = Frame(client)) {
      capture_.AddSegment(client_port_, kLidarPort, false, frame);
      lidar.Send(frame);
      const Bytes answer = Frame(lidar);
      capture_.AddSegment(client_port_, kLidarPort, true, answer);
      client.Send(answer);
    }
  }

  CaptureFile& capture_;
  const uint16_t lidar_port_;
  uint16_t client_port_ = kClientPort;
  SocketPeer peer_;
};

TEST_F(Dissector, TellsWhatAClientAndALidarSay) {
  CaptureFile capture("real.pcap", Link::kEthernet);
  {
    const VirtualLidarProcess lidar({"--set", "SN=A \"B\" 7", "--log-size", "3000"});
    const Recorder recorder(&capture, lidar.port());
    const QStringList at = recorder.At("Orca");
    const Said set(0, {"set", "Filter Window=9"}, at);
    const Said refused(1, {"send", "0x12", "01"}, at);
    const Said page(0, {"get", "Device"}, at);
    const Said download(0, {"download", "Event Log", "."}, at);
    VirtualLidarProcess::MakeFirmware("Osprey", "9.8.7", "osprey.patch", 1);
    const Said upgrade(1, {"upgrade", "osprey.patch"}, at);
  }
  const QStringList words = Words(capture);
  for (const char* expected : {
           "Liveness",
           "Write Diagnostics = Interference Filter Normal, Filter Window 9 ns",
           "Write Diagnostics: done <- ",
           "Write Scan [wrong length] {1 byte, and the table has 18}",
           "Write Scan: refused, wrong length (2) <- ",
           "Read Device (Identity)",
           "Read Device (Identity): PN Orca-64-A2, SN A \"B\" 7, MAC 02:4F:52:43:00:2A, HWVER",
           "Read Monitor Hardware: A1 <- ",
           "Download Event Log: 3000 bytes <- ",
           "Firmware Piece 1 of 1 = 1024 bytes",
           "Firmware Piece 1 of 1: refused, this is no firmware for this lidar (8) <- ",
       }) {
    EXPECT_NE(words.indexOf(QRegularExpression('^' + QRegularExpression::escape(expected) + ".*")),
              -1)
        << expected << "\n"
        << words.join('\n').toStdString();
  }
  EXPECT_TRUE(words.filter("{").filter(QRegularExpression("request|answer")).isEmpty())
      << words.filter("{").join('\n').toStdString();
  EXPECT_EQ(Shown(capture, {"-Y", "tevron.var.filter_window == 9 && tevron.request"}).size(), 1);
  EXPECT_EQ(Shown(capture, {"-Y", "tevron.return_code == 2"}).size(), 1);
  EXPECT_EQ(Words(capture, {"-o", "tevron.model:Osprey"}).filter("Read Device").size(), 0);
}

TEST_F(Dissector, NamesThePartsOfAHandshake) {
  CaptureFile capture("handshake.pcap", Link::kEthernet);
  {
    const VirtualLidarProcess lidar({"--model", "Osprey"});
    const Recorder recorder(&capture, lidar.port());
    const Said set(0, {"set", "Frame Rate=20", "--host-port", "ANY"}, recorder.At("Osprey"));
  }
  Write({"--model", "Osprey"});
  QString words = Words(capture).join('\n');
  words.replace(QRegularExpression("( [0-9a-f]{2}){16}"), " (16)");
  EXPECT_TRUE(words.contains("Authentication Probe: Authentication Required yes <- 1\n"));
  const QRegularExpression handshake(
      "\nAuthentication Challenge\nAuthentication Challenge: \\(16\\) <- \\d+\n"
      "Authentication Response = \\(16\\)\nAuthentication Response: done <- \\d+\n"
      "Write Beam = Frame Rate 20 Hz, .*\nWrite Beam: done <- \\d+\n");
  EXPECT_TRUE(handshake.match(words).hasMatch()) << words.toStdString();
  EXPECT_EQ(Shown(capture, {"-Y", "tevron.protected"}).size(), 1);
}

struct Segment {
  bool is_from_lidar;
  const char* bytes;
};

/// A connection of its own, and the words of its segments.
struct Conversation {
  const char* what;
  uint16_t lidar_port;
  std::vector<Segment> segments;
  const char* words;
};

constexpr char kAskLevel[] = "47 74 34 00 00 00 00 00";
constexpr char kTellTrim[] = "47 74 2d 00 00 00 00 08  3f c0 00 00 00 06 40 01";
constexpr char kLive[] = "47 74 07 00 00 00 00 00";

const Conversation kConversations[] = {
    {"two in one segment, and one in three",
     kLidarPort,
     {{false, "47 74 2d 00 00 00 00 00"},
      {true, "47 74 2d 00 00 00"},
      {true, "00 08 3f c0 00 00 00"},
      {true, "06 40 01"},
      {false, "47 74 07 00 00 00 00 00 47 74 08 00 00 00 00 00"}},
     R"(Read FOV
Read FOV: Elevation Trim 1.50 deg, Azimuth Trim 1.50 deg, Vertical Channels 64 (fine), Window Overlap Keep the first <- 1
Liveness; Liveness (older firmware) {No answer was seen,No answer was seen})"},
    {"version 2.0 on another port, where the first frame is an answer",
     20000,
     {{true, "57 75 01 2d 00 00 00 00 00 00 00 08  3f c0 00 00 00 06 40 01"},
      {false, "57 75 01 39 00 00 00 00 00 00 00 01 00"},
      {true, "57 75 01 39 00 00 00 00 00 00 00 08 42 32 00 00 00 00 00 00"}},
     R"(Read FOV: Elevation Trim 1.50 deg, Azimuth Trim 1.50 deg, Vertical Channels 64 (fine), Window Overlap Keep the first {No request that this answers was seen}
Read Monitor Hardware
Read Monitor Hardware: B2 <- 2)"},
    {"nonsense around frames, and a length that is none",
     kLidarPort,
     {{false, kLive},
      {true, "00 47 47 74 07 00 ff ff ff ff 47 74 07 00 00 00 00 00 01 02 03"},
      {false, kLive},
      {true, "47 74 07 00 00 00 00 20 01"},
      {true, kLive}},
     R"(Liveness
Stray bytes (10 bytes); Liveness: done; Stray bytes (3 bytes) <- 1 {Bytes that belong to no frame,Bytes that belong to no frame}
Liveness
Stray bytes (9 bytes); Liveness: done <- 3 {Bytes that belong to no frame})"},
    {"an answer that never comes, behind one to another command",
     kLidarPort,
     {{false, kAskLevel},
      {false, kLive},
      {true, kLive},
      {false, kAskLevel},
      {true, "47 74 34 05 00 00 00 00"}},
     R"(Read Power {No answer was seen}
Liveness
Liveness: done <- 2
Read Power
Read Power: refused, authentication required (5) <- 4 {The lidar refused: authentication required (5)})"},
    {"an answer that may be a late one, and one too many",
     kLidarPort,
     {{false, "47 74 2d 00 00 00 00 00"},
      {false, "47 74 2d 00 00 00 00 00"},
      {true, kTellTrim},
      {true, kTellTrim},
      {true, kTellTrim}},
     R"(Read FOV
Read FOV
Read FOV: Elevation Trim 1.50 deg, Azimuth Trim 1.50 deg, Vertical Channels 64 (fine), Window Overlap Keep the first <- 2 {May be the late answer to frame 1, which asked the same and had been given up}
Read FOV: Elevation Trim 1.50 deg, Azimuth Trim 1.50 deg, Vertical Channels 64 (fine), Window Overlap Keep the first <- 1 {One answer more than requests of this command were open: late, or a copy}
Read FOV: Elevation Trim 1.50 deg, Azimuth Trim 1.50 deg, Vertical Channels 64 (fine), Window Overlap Keep the first {No request that this answers was seen})"},
    {"hardware of the monitor page, as it was told; a payload of another length",
     kLidarPort,
     {{false, "47 74 39 00 00 00 00 01 00"},
      {true, "47 74 39 00 00 00 00 08 42 32 00 00 00 00 00 00"},
      {false, "47 74 39 00 00 00 00 01 01"},
      {true, "47 74 39 00 00 00 00 02 12 34"}},
     R"(Read Monitor Hardware
Read Monitor Hardware: B2 <- 1
Read Monitor (Emitter Temperature, Receiver Temperature, Motor Temperature, ...)
Read Monitor (Emitter Temperature, Receiver Temperature, Motor Temperature, ...): Emitter Temperature 46.60 °C [wrong length] <- 3 {2 bytes, and the table has 8})"},
};

TEST_F(Dissector, FindsFramesAndPairsThemWhateverTcpAndTheLidarMakeOfThem) {
  CaptureFile capture("tcp.pcap", Link::kEthernet);
  std::vector<int> first_packets;
  uint16_t client_port = kClientPort;
  for (const Conversation& conversation : kConversations) {
    first_packets.push_back(capture.packets());
    ++client_port;
    for (const Segment& segment : conversation.segments) {
      capture.AddSegment(client_port, conversation.lidar_port, segment.is_from_lidar,
                         FromHex(segment.bytes));
    }
  }
  for (size_t i = 0; i < first_packets.size(); ++i) {
    const Conversation& conversation = kConversations[i];
    QStringList words = Words(capture, {"-Y", "tevron && tcp.stream == " + QString::number(i)});
    for (QString& line : words) {
      for (const char* number : {" <- ", "frame "}) {
        const QRegularExpression pattern(number + QString("(\\d+)"));
        const auto match = pattern.match(line);
        if (match.hasMatch()) {
          const int packet = match.captured(1).toInt() - first_packets[i];
          line.replace(match.captured(), number + QString::number(packet));
        }
      }
    }
    EXPECT_EQ(words.join('\n').toStdString(), conversation.words) << conversation.what;
  }
}

TEST_F(Dissector, ReadsSerialLinesInAnyPortions) {
  CaptureFile capture("line.pcap", Link::kSerialLine);
  // A request, its echo, and the answer in two portions; the mode, whose answer has a layout of its
  // own; noise, and a wrong checksum; a transfer with two requests on their way, of which the first
  // is lost; a frame of the point cloud; one whose length is damaged and hides the next.
  const QString portions = R"(24 4c 44 43 4d 44 2c  01 df  04 03 02 01  dc e0 a6 fc  ee ff
24 4c 44 43 4d 44 2c  01 df  04 03 02 01  dc e0 a6 fc  ee ff
24 4c 44 43 4d 44 2c  06 df 00  00 00 00 01  01
04 03 02 01  a1 09 27 85  ee ff
24 4c 44 43 4d 44 2c  03 03 01 00     04 03 02 01  78 51 98 95  ee ff
24 4c 44 43 4d 44 2c  03 03 01 00 00  04 03 02 01  1f bb b0 d5  ee ff
00 24 4c 44 43 4d 44 2c  03 2a 00 11 22  04 03 02 01  e0 32 17 3d  ee ff
24 4c 44 4f 54 41 2c  00 0c 51 09 50  02 00 00 00 05 47 0b 99 f4  30 d7 7c 03  ee ff  24 4c 44 4f 54 41 2c  00 04 41 09 50 00  b5 d6 c5 1d  ee ff
24 4c 44 4f 54 41 2c  00 11 51 0a 51  02 00 00 00 01 e2 8f 4b 83  01 02 03 04 05  5b 88 53 af  ee ff
24 4c 44 4f 54 41 2c  00 0d 51 0b 52  02 00 00 00 05 47 0b 99 f4  01  e5 a5 2b 1c  ee ff
24 4c 44 4f 54 41 2c  00 04 41 0b 52 00  9b d6 22 de  ee ff
24 4c 44 50 54 43 2c  01 00  00 03  aa bb cc  2a 8e 58 b5  ee ff
24 4c 44 43 4d 44 2c  ff df  24 4c 44 43 4d 44 2c  01 66  04 03 02 01  ad 18 4e c3  ee ff)";
  for (const QString& portion : portions.split('\n')) {
    capture.AddPortion(FromHex(portion.toStdString()));
  }
  Write({"--model", "Kiva"});
  const char* const words = R"(Authentication Probe
Echo of Authentication Probe
Part of a frame that goes on in frame 4 (15 bytes)
Authentication Probe: Counter 00 00 00 01, Authentication Required yes <- 1
Switch Mode = Mode upgrade, Sub-mode 0
Switch Mode: done <- 5
Stray bytes (1 byte); Command 0x2a: 2 bytes [wrong checksum] {Bytes that belong to no frame,The checksum is wrong}
Firmware Begin = Component application, Image Length 5 bytes, Image Checksum 47 0b 99 f4; Firmware Begin: done <- 8
Firmware Piece 1 = 5 bytes {No answer was seen}
Firmware End = Component application, Image Length 5 bytes, Image Checksum 47 0b 99 f4, Then restart
Firmware End: done <- 10
Point cloud
Stray bytes (9 bytes); Authentication Challenge {Bytes that belong to no frame,No answer was seen})";
  EXPECT_EQ(Words(capture).join('\n').toStdString(), words);
}

// Every byte of a conversation is damaged once, and every length is the last one that was captured.
TEST_F(Dissector, FailsAtNothingThatIsDamaged) {
  const Bytes frames[] = {
      FromHex("47 74 55 00 00 00 00 0f  0a 00 ff f6 28 0c 02 00 00 00 00 00 00 00 00"),
      FromHex("57 75 01 2d 00 00 00 00  00 00 00 08  3f c0 00 00 00 06 40 01"),
      FromHex(
          "47 74 83 00 00 00 00 15  00 00 00 00  00 00 00 01  00 00 00 01  e2 8f 4b 83  01 02 03"),
      FromHex("24 4c 44 43 4d 44 2c  06 df 00  00 00 00 01  01  04 03 02 01  a1 09 27 85  ee ff"),
      FromHex(
          "24 4c 44 4f 54 41 2c  00 0c 51 09 50  02 00 00 00 05 47 0b 99 f4  30 d7 7c 03  ee ff"),
      FromHex("24 4c 44 50 54 43 2c  01 00  00 03  aa bb cc  2a 8e 58 b5  ee ff"),
  };
  CaptureFile network("damaged.pcap", Link::kEthernet);
  CaptureFile line("damaged_line.pcap", Link::kSerialLine);
  uint16_t client_port = kClientPort;
  for (const Bytes& frame : frames) {
    for (size_t i = 0; i < frame.size(); ++i) {
      Bytes damaged = frame;
      damaged[i] ^= 0xFF;
      const Bytes cut(frame.begin(), frame.begin() + static_cast<std::ptrdiff_t>(i) + 1);
      ++client_port;
      for (const bool is_from_lidar : {false, true}) {
        network.AddSegment(client_port, kLidarPort, is_from_lidar, cut);
        network.AddSegment(client_port, kLidarPort, is_from_lidar, damaged);
        network.AddSegment(client_port, kLidarPort, is_from_lidar, frame);
      }
      line.AddPortion(damaged);
      line.AddPortion(cut);
    }
  }
  for (const char* model : {"Orca", "Kiva"}) {
    Write({"--model", model});
    for (const char* whole : {"TRUE", "FALSE"}) {
      const QString desegment = QString("tcp.desegment_tcp_streams:") + whole;
      EXPECT_GT(Shown(network, {"-V", "-o", desegment}).filter("Tevron, ").size(), 100);
    }
    EXPECT_GT(Shown(line, {"-V"}).filter("Tevron, ").size(), 100);
  }
}

// Where Lua's numbers and Wireshark's texts are not enough: 64 bits, bytes that are no UTF-8.
TEST_F(Dissector, ShowsEveryValueAsTheWindowDoes) {
  std::ofstream("Config/varID/Orca.csv", std::ios::app)
      << "30,1,0x71,,,Name,0,string,,,,,,Device,9,0,,,\n"
         "30,2,0x71,,,Life,0,DT,,,,,,Device,8,0,,,\n"
         "30,3,0x71,,,Energy,0,i64,,,J,0.01,,Device,,0,,,\n"
         "30,4,0x71,,,Total,0,u64,,,,1000,,Device,,0,,,\n"
         "30,5,0x71,,,Rest,0,i64,,,,1e-7,,Device,,0,,,\n";
  Write({"--model", "Orca"});
  CaptureFile capture("values.pcap", Link::kEthernet);
  capture.AddSegment(kClientPort, kLidarPort, false, FromHex("47 74 71 00 00 00 00 00"));
  capture.AddSegment(kClientPort, kLidarPort, true,
                     FromHex("47 74 71 00 00 00 00 29  c2 b5 e2 82 00 ed a0 41 00"
                             "ff ff ff ff ff ff ff ff  80 00 00 00 00 00 00 00"
                             "ff ff ff ff ff ff ff ff  ff ff ff ff ff ff ff ff"));
  const char* const rest =
      "00 00 00 00 43 b3 c0 00 00 00 00 00 7f c0 00 00 00 00 00 00 43 b4 00 00"
      "00 00 00 00 43 b4 00 00 00 00 00 00 43 b4 00 00";
  capture.AddSegment(kClientPort, kLidarPort, false,
                     FromHex("47 74 22 00 00 00 00 2a  01 05" + std::string(rest)));
  const QStringList shown = Shown(
      capture, {"-T", "fields", "-E", "aggregator=|", "-e", "tevron.value", "-Y", "tevron.value"});
  EXPECT_EQ(shown.join('\n').toStdString(),
            "Name = µ\uFFFD\uFFFD\\x00\uFFFD\uFFFDA|Life = 5124095576030431 h 0 min 15 s|"
            "Energy = -92233720368547758.08 J|Total = 18446744073709551615000|Rest = -0.0000001\n"
            "FOV Table = 0, 359.5, 0, nan, 0, 360, 0, 360, 0, 360");
}

TEST_F(Dissector, TakesAnyTableAndNoKey) {
  std::ofstream("Config/auth_keys.ini", std::ios::trunc) << test_keys::File();
  std::ofstream("Config/varID/Orca.csv", std::ios::app)
      << "30,1,0x71,,,\"]] \"\"--[[ \\n \\065 'µ "
         "%s\",0,uint8,0,0|1,\"\"\"\\\",,\"]]|%d\",Device,,0,,,\n"
         "30,2,0x71,,,\"Line\nbreak\",0,uint8,0,bad,,,,Device,,0,,,\n";
  const QByteArray told = Write({"--model", "Orca"});
  EXPECT_TRUE(told.contains("Orca.csv, line ")) << told.toStdString();
  CaptureFile capture("hostile.pcap", Link::kEthernet);
  capture.AddSegment(kClientPort, kLidarPort, false, FromHex("47 74 71 00 00 00 00 00"));
  capture.AddSegment(kClientPort, kLidarPort, true, FromHex("47 74 71 00 00 00 00 02 01 07"));
  const std::string name = R"(]] "--[[ \n \065 'µ %s)";
  const std::string asked = "Read Device (" + name + R"(, Line\x0abreak))";
  EXPECT_EQ(Words(capture).join('\n').toStdString(),
            asked + "\n" + asked + ": " + name + R"( %d, Line\x0abreak 7 <- 1)");

  const Said once(0, {"dissector"});
  const Said again(0, {"dissector"});
  EXPECT_EQ(once.out(), again.out());
  SecretSearch search;
  test_keys::AddTo(&search);
  EXPECT_EQ(search.FoundIn(once.out().toStdString()), "");
  const Ran json(0, {"dissector"});
  EXPECT_EQ(json.Json()["lua"].toString().toUtf8(), once.out());
}

}  // namespace
