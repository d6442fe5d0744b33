#include "XpvtTraceGenerator.h"
#include "support/CliRunner.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace {

// A 7.01 trace that touches each kind of row once: primitive, result, request name,
// PDU and parameter, ECU, a not acknowledged state, a ten-byte response PDU (three
// rows, the last repeating one digit) and nested response parameters.
const char* const Trace701 =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<ProcessValueTrace>\n"
    " <Description DateTime=\"2024-01-02T03:04:05\"><Title>T</Title><Schema>7.01</Schema><Author>Me</Author>\n"
    "  <Project ShortName=\"P\"><VehicleInformationTable ShortName=\"V\"><LogicalLink><ShortName>L</ShortName>"
    "<DatabaseAccessKey>DAK</DatabaseAccessKey></LogicalLink></VehicleInformationTable></Project>\n"
    " </Description>\n"
    " <Trace>\n"
    "  <StartTrace><Date>02.01.2024</Date><Time>03:04:05</Time></StartTrace>\n"
    "  <OpenComPrimitive><LogicalLink><ShortName>LL_A</ShortName></LogicalLink><Type>eJOB</Type>"
    "<Date>d</Date><Time>t</Time></OpenComPrimitive>\n"
    "  <ZdtResult><LogicalLink><ShortName>LL_A</ShortName></LogicalLink>\n"
    "   <ZdtRequest><ShortName>Req</ShortName><PDU>22 F1 90</PDU>\n"
    "    <ZdtRequestParameter><ShortName>Speed</ShortName><RangeInfo><Text>km/h</Text></RangeInfo>"
    "<ZdtValue><Value>42</Value></ZdtValue></ZdtRequestParameter>\n"
    "   </ZdtRequest>\n"
    "   <ZdtResponse><ECU>E1</ECU><State>notacknowledged</State><CANID>7E8</CANID><TimeStamp>99</TimeStamp>"
    "<PDU>62 F1 90 01 02 03 04 05 06 07</PDU>\n"
    "    <ZdtResponseParameter><ShortName>Outer</ShortName><ZdtResponseParameter><ShortName>Inner</ShortName>"
    "<ZdtValue><Value>7</Value></ZdtValue></ZdtResponseParameter></ZdtResponseParameter>\n"
    "   </ZdtResponse>\n"
    "  </ZdtResult>\n"
    "  <StopTrace><Date>x</Date><Time>y</Time></StopTrace>\n"
    " </Trace>\n"
    "</ProcessValueTrace>\n";

const char* const Rows701 = "1\t002\tStart trace\t\t\t\t\t\t@03:04:05 02.01.2024\n"
                            "2\t001\tOpenComPrimitive\tLL_A\t\t\teJOB\topen ComPrimitive\t@t d\n"
                            "3\t002\tResult\tLL_A\t\t\t[Tester]\t\t\n"
                            "4\t002\t  Request[ShortName]\t\t\t\tReq\t\t\n"
                            "5\t002\t  Request PDU\t\t\t\tRequestPDU\t22 F1 90\t\n"
                            "6\t002\t  Request parameter\t\t\t\tSpeed\t42\tkm/h\n"
                            "7\t002\t  Response [ECU]\t\t\t\t[E1]\t\t\n"
                            "8\t003\t  Response [STATE]\t\t\t\tResponse state\tnot acknowledged\t\n"
                            "9\t002\t  Response[PDU]\t\t7E8\t99\tResponsePDU\t62 F1 90 01 02 03 04 05\t\n"
                            "10\t002\t  Response[PDU]\t\t7E8\t99\tResponsePDU\t06 07\t\n"
                            "11\t002\t  Response[PDU]\t\t7E8\t99\tResponsePDU\t7\t\n"
                            "12\t000\t    Response parameter\t\t\t\tOuter\t\t\n"
                            "13\t000\t    Response parameter\t\t\t\t  Inner\t7\t\n"
                            "14\t002\tStop trace\t\t\t\t\t\t@y x\n";

// A 7.02 trace: the schema switches at the end of Description. It has a result with its
// primitive, a request with a radix-16 parameter, a 17-byte response message (two
// rows) and an error flushed at the end of the result.
const char* const Trace702 =
    "<ProcessValueTrace>\n"
    " <Description DateTime=\"2024-05-06T07:08:09\"><Title>Two</Title><Schema>7,02</Schema></Description>\n"
    " <Trace>\n"
    "  <StartTrace DateTime=\"2024-05-06T07:08:10\"><PhysicalInterfaceLink>VCI</PhysicalInterfaceLink>"
    "<PhysicalVehicleLink>CAN</PhysicalVehicleLink></StartTrace>\n"
    "  <OpenLogicalLink><TimeStamp>100</TimeStamp><LogicalLink ShortName=\"LL_X\"/>"
    "<AccessKeyOfLocation>AK</AccessKeyOfLocation></OpenLogicalLink>\n"
    "  <Result><LogicalLink ShortName=\"LL_X\"/><DiagComPrimitive ShortName=\"Svc\" ID=\"5\" "
    "ObjectType=\"eDIAGSERVICE\"/>\n"
    "   <Request ShortName=\"Req\"><TimeStamp>200</TimeStamp><RequestMessage>22 F1 90</RequestMessage>\n"
    "    <RequestParameter ShortName=\"Did\" Type=\"VALUE\"><Unit>u</Unit><ValueRangeInfo Type=\"VALID\"/>"
    "<Value Radix=\"16\"><ValueAsString>255</ValueAsString></Value></RequestParameter>\n"
    "   </Request>\n"
    "   <Response ShortName=\"Resp\"><TimeStamp>300</TimeStamp><AccessKeyOfLocation>AK2</AccessKeyOfLocation>"
    "<LocationAddress>7E8</LocationAddress>"
    "<ResponseMessage>62 F1 90 00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D</ResponseMessage></Response>\n"
    "   <Error Code=\"E1\"><CodeDescription>bad</CodeDescription></Error>\n"
    "  </Result>\n"
    "  <StopTrace DateTime=\"2024-05-06T07:09:00\"/>\n"
    " </Trace>\n"
    "</ProcessValueTrace>\n";

const char* const Rows702 =
    "1\t002\tStart Trace\tVCI CAN\t\t\t2024-05-06T07:08:10\t\t\t\t\n"
    "2\t002\tOpenLogicalLink\tLL_X\tAK\t\t100\t\t\t\t\n"
    "3\t002\tResult [eDIAGSERVICE]\tLL_X\t\t5\t\t\t\t\t\n"
    "4\t002\t  DiagComPrimitive\t\t\t5\t\tSvc:eDIAGSERVICE\t\t\t\n"
    "5\t002\t  Request\t\t\t\t200\tReq\t22 F1 90\t\t\n"
    "6\t002\t    Parameter [VALUE]\t\t\t\t\tDid\t$FF\tu\tVALID\n"
    "7\t000\t  Response\t\tAK2\t7E8\t300\tResp\t62 F1 90 00 01 02 03 04   05 06 07 08 09 0A 0B 0C\t\t\n"
    "8\t000\t  \t\t\t\t\t\t0D\t\t\n"
    "9\t003\tError\t\t\tE1\t\tbad\t\t\t\n"
    "10\t002\tStop Trace\t\t\t\t2024-05-06T07:09:00\t\t\t\t\n";

TEST(XpvtCli, RowsOfBothSchemasAsStored) {
    TempDir dir;
    const CliRun rows701 = RunCliInHome(dir, {"rows", dir.Write("a.xpvt", Trace701)});
    EXPECT_EQ(rows701.status, 0) << rows701.err;
    EXPECT_EQ(rows701.out, Rows701);
    const CliRun rows702 = RunCliInHome(dir, {"rows", dir.Write("b.XPVT", Trace702)}); // the extension in any case
    EXPECT_EQ(rows702.status, 0) << rows702.err;
    EXPECT_EQ(rows702.out, Rows702);
    EXPECT_EQ(LeftoverFiles(dir), 0u);
}

// The dialog's labels; the last one shows the database access key, as the dialog does.
TEST(XpvtCli, Info) {
    TempDir dir;
    const CliRun info701 = RunCliInHome(dir, {"info", dir.Write("a.xpvt", Trace701)});
    EXPECT_EQ(info701.status, 0) << info701.err;
    EXPECT_EQ(info701.out, "Title: T\nSchema: 7.01\nProduct version: \nDate: 2024-01-02\nTime: 03:04:05\n"
                           "Author: Me\nComment: \nProject Shortname: P\nVehicle information table Shortname: V\n"
                           "LogicalLink: DAK\nRows: 14\n");
    const CliRun info702 = RunCliInHome(dir, {"info", dir.Write("b.xpvt", Trace702)});
    EXPECT_EQ(info702.status, 0) << info702.err;
    EXPECT_EQ(info702.out, "Title: Two\nSchema: 7,02\nProduct version: \nDate: 2024-05-06\nTime: 07:08:09\n"
                           "Author: \nComment: \nProject Shortname: \nVehicle information table Shortname: \n"
                           "LogicalLink: \nRows: 10\n");
}

TEST(XpvtCli, Find701) {
    TempDir dir;
    const std::string path = dir.Write("a.xpvt", Trace701);
    struct Case {
        std::vector<std::string> criteria;
        const char* lines;
    };
    const Case cases[] = {
        {{"searchPrimitives=1", "matchAll=1"}, "2\n"},
        {{"searchRequests=1", "parameterEnabled=1", "matchByName=true", "parameterText=Speed"}, "6\n"},
        {{"searchRequests=1", "parameterEnabled=1", "parameterText=Speed"}, ""}, // the value is 42
        {{"searchResponses=1", "pduEnabled=1", "pduText=F1"}, "9\n10\n11\n"},    // every row of the PDU
        {{"searchBothSides=1", "pduEnabled=1", "pduText=F1"}, "5\n9\n10\n11\n"},
    };
    for (const Case& c : cases) {
        std::vector<std::string> args = {"find", path};
        args.insert(args.end(), c.criteria.begin(), c.criteria.end());
        const CliRun run = RunCliInHome(dir, args);
        EXPECT_EQ(run.status, 0) << run.err;
        EXPECT_EQ(run.out, c.lines) << c.criteria.back();
    }
    EXPECT_EQ(LeftoverFiles(dir), 0u);
}

TEST(XpvtCli, Find702BySection) {
    TempDir dir;
    const std::string path = dir.Write("b.xpvt", Trace702);
    const CliRun hit = RunCliInHome(dir, {"find", path, "ParameterSection.name=Did"});
    EXPECT_EQ(hit.status, 0) << hit.err;
    EXPECT_EQ(hit.out, "6\n");
    const CliRun miss = RunCliInHome(dir, {"find", path, "ParameterSection.name=Rpm"});
    EXPECT_EQ(miss.status, 0) << miss.err;
    EXPECT_EQ(miss.out, "");
    // A section whose findPressed is cleared explicitly takes no part.
    const CliRun unpressed =
        RunCliInHome(dir, {"find", path, "ParameterSection.name=Did", "ParameterSection.findPressed=0"});
    EXPECT_EQ(unpressed.status, 0) << unpressed.err;
    EXPECT_EQ(unpressed.out, "");
}

TEST(XpvtCli, FailuresAndBadArguments) {
    TempDir dir;
    const CliRun missing = RunCliInHome(dir, {"info", dir.File("none.xpvt")});
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.out, "");
    EXPECT_EQ(missing.err, "Could not open input xml file.\n");

    const CliRun truncated = RunCliInHome(dir, {"rows", dir.Write("t.xpvt", "<ProcessValueTrace>\n<Trace")});
    EXPECT_EQ(truncated.status, 1);
    EXPECT_EQ(truncated.out, "");
    EXPECT_EQ(truncated.err, "XML error: 2 unclosed token\n");
    EXPECT_EQ(LeftoverFiles(dir), 0u);

    const std::string path701 = dir.Write("a.xpvt", Trace701);
    const std::string path702 = dir.Write("b.xpvt", Trace702);
    const std::vector<std::vector<std::string>> bad = {
        {"find", path701, "noSuchField=1"},
        {"find", path701, "matchAll=yes"},
        {"find", path701, "pduText"},
        {"find", path701, "RequestSection.name=x"}, // 7.02 names for a 7.01 file
        {"find", path702, "searchRequests=1"},      // and the other way round
        {"find", path702, "RequestSection.nosuch=1"},
        {"find", path702, "NoSection.name=x"},
        {"find", path702, "RequestSection.all=2"},
        {"find", path702, "searchRequests=1", "RequestSection.name=x"},
        {"rows", path701, path702},
        {"sbt", path701, dir.File("out.sbt")},
    };
    for (const auto& args : bad) {
        const CliRun run = RunCliInHome(dir, args);
        EXPECT_EQ(run.status, 2) << args[0] << " " << args.back();
        EXPECT_NE(run.err.find("usage:"), std::string::npos);
        EXPECT_EQ(run.out, "");
    }
    EXPECT_EQ(LeftoverFiles(dir), 0u);
}

// An interrupted run removes its swap file and per-run directory on the way out.
TEST(XpvtCli, InterruptLeavesNoSwapFile) {
    TempDir dir;
    zdtgen::XpvtTraceOptions options;
    options.targetBytes = 60u << 20;
    std::ofstream out(dir.File("big.xpvt"), std::ios::binary);
    zdtgen::WriteXpvtTrace(out, options);
    out.close();
    EXPECT_EQ(InterruptedRowsStatus(dir, dir.File("big.xpvt")), "130\n");
    EXPECT_EQ(LeftoverFiles(dir), 0u);
}

} // namespace
