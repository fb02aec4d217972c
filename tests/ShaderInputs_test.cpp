// ShaderInputs_test.cpp -- tests stock/PMShader: the header comment of a shader file and its controls
#include "tests/ShaderHost.h"

namespace {

class ShaderInputs : public ShaderTest {
  protected:
    // Builds an instance from a header and looks at its controls; needs no OpenGL.
    std::unique_ptr<ShaderInstance> OpenHeader(const std::string &json)
    {
        return Open("/*" + json + "*/\nvoid mainImage(out vec4 c, in vec2 p) { c = vec4(1.0); }\n");
    }
};

TEST_F(ShaderInputs, BecomeControlsWithTheirRangesAndDefaults)
{
    const auto p = OpenHeader(R"({"INPUTS": [
        {"NAME": "speed", "LABEL": "Speed v1.5", "GROUP": "Motion", "TYPE": "float", "MIN": -2, "MAX": 4, "DEFAULT": 1.5,
         "SOURCE": "wave", "WAVE": "ramp", "PERIOD": 9, "RANGE": [0, 9], "HELP": "Schön"},
        {"NAME": "count", "TYPE": "long", "MIN": 1, "MAX": 9, "DEFAULT": 3, "SOURCE": "sound", "SMOOTH": 12},
        {"NAME": "mode", "TYPE": "long", "VALUES": [5, -1, 20], "LABELS": ["A", "B"], "DEFAULT": -1, "SOURCE": "sound"},
        {"NAME": "on", "TYPE": "bool", "DEFAULT": 1}, {"NAME": "tint", "TYPE": "color", "DEFAULT": [0.1, 2, -3]},
        {"NAME": "at", "TYPE": "point2D", "MIN": [-1, -2], "MAX": [1, 2], "DEFAULT": [0.5, 1]}]})");
    const auto &ap = p->pModule->apControl;
    std::string names;
    for (const auto &pctl : ap)
        names += DottedName(*pctl) + ",";
    EXPECT_EQ("Motion.Speed v1 5,count,mode,on,tint.Red,tint.Green,tint.Blue,tint.Alpha,at.X,at.Y,", names);
    const ControlRecord &speed = *ap[0], &count = *ap[1], &mode = *ap[2];
    EXPECT_EQ(CONTROLTYPE_FLOAT, (int)speed.Base.dwType);
    EXPECT_EQ(u"Schön", std::u16string(speed.Base.szDescription));
    EXPECT_EQ(FLUIDSOURCE_WAVE, (int)speed.Base.dwSource);
    EXPECT_EQ(speed.Base.dwDefaultSource, speed.Base.dwSource);
    EXPECT_EQ(9000u, speed.Base.nWavePeriod);
    EXPECT_EQ((uint32_t)WAVETYPE_RAMP, speed.Base.dwWaveType);
    EXPECT_EQ(31u, speed.Base.dwSourceMask);
    EXPECT_FLOAT_EQ(1.5f, speed.Float.fValue);
    EXPECT_FLOAT_EQ(4, speed.Float.fMax) << "the range stays within the limits";
    EXPECT_EQ(3, count.Integer.nDefaultValue);
    EXPECT_EQ(12u, count.Base.nSamples);
    ASSERT_EQ(3u, mode.ItemSelect.nItems);
    EXPECT_EQ(1u, mode.ItemSelect.nCurrentItemValue);
    EXPECT_EQ(u"20", std::u16string(mode.ItemSelect.pItems[2].pszText));
    EXPECT_EQ(FLUIDSOURCE_FIXED, (int)mode.Base.dwSource) << "a choice follows nothing";
    EXPECT_EQ(1u, ap[3]->Boolean.bState);
    EXPECT_FLOAT_EQ(1, ap[5]->Float.fValue);
    EXPECT_FLOAT_EQ(0, ap[6]->Float.fValue);
    EXPECT_FLOAT_EQ(1, ap[7]->Float.fValue) << "opaque by default";
    EXPECT_FLOAT_EQ(-2, ap[9]->Float.fAbsMin);
}

TEST_F(ShaderInputs, AreReadAsLooselyAsAuthorsWriteThem)
{
    const auto p =
        OpenHeader("{ // mine, \"all\n\"CREDIT\": \"a\tb\nc, ] \\\"\", \"INPUTS\": [\n"
                   "{\"NAME\": \"a\", \"TYPE\": \"long\", \"LABELS\": [\"x\", \"y\",], \"DEFAULT\": 1,},\n"
                   "{\"NAME\": \"iMouse\", \"TYPE\": \"point2D\"}, {\"NAME\": \"b\", \"TYPE\": \"color\"} , ], }");
    const auto &ap = p->pModule->apControl;
    ASSERT_EQ(5u, ap.size()) << "the mouse is the host's own";
    EXPECT_EQ(2u, ap[0]->ItemSelect.nItems);
    EXPECT_EQ(1u, ap[0]->ItemSelect.nCurrentItemValue);
    EXPECT_TRUE(ShaderMessages.empty());
}

// Nothing here may crash, hang, or give the host a record that breaks its rules.
TEST_F(ShaderInputs, OfHostileHeadersLeaveOnlyWhatCanBeUsed)
{
    std::string many = "{\"INPUTS\":[", same = many;
    for (int i = 0; i < 400; i++) {
        many += "{\"NAME\":\"c" + std::to_string(i) + "\",\"TYPE\":\"color\"},";
        same += "{\"NAME\":\"s" + std::to_string(i) + "\",\"LABEL\":\"Same\",\"TYPE\":\"float\"},";
    }
    const std::string headers[] = {
        "{",
        "{}",
        "{\"INPUTS\":7}",
        "{\"INPUTS\":{\"a\":1}}",
        "{\"INPUTS\":[[[]],null,1,\"x\"]}",
        std::string(60000, '['),
        "{\"INPUTS\":" + std::string(30000, '['),
        "{\"INPUTS\":[{\"NAME\":1,\"TYPE\":2}]}",
        std::string(70000, ' ') + "{}",
        "{\"INPUTS\":[{\"NAME\":\"a;}\",\"TYPE\":\"float\"},{\"NAME\":\"gl_x\",\"TYPE\":\"float\"},{\"NAME\":\"a__b\","
        "\"TYPE\":\"float\"}]}",
        "{\"INPUTS\":[{\"NAME\":\"f\",\"TYPE\":\"float\",\"MIN\":1e999,\"MAX\":-1e308,\"DEFAULT\":\"x\"}]}",
        "{\"INPUTS\":[{\"NAME\":\"f\",\"TYPE\":\"float\",\"MIN\":1e300,\"MAX\":-1e308,\"DEFAULT\":[],\"RANGE\":{},"
        "\"PERIOD\":-1e9,\"SMOOTH\":1e9,\"EASE\":-5}]}",
        "{\"INPUTS\":[{\"NAME\":\"l\",\"TYPE\":\"long\",\"MIN\":-1e300,\"MAX\":1e300,\"VALUES\":[],\"LABELS\":3}]}",
        "{\"INPUTS\":[{\"NAME\":\"l\",\"TYPE\":\"long\",\"VALUES\":[1e300,null,{}],\"LABELS\":[[],\"\\ud800\"]}]}",
        "{\"INPUTS\":[{\"NAME\":\"t\",\"LABEL\":\"\\u0000\\u0001.\\u0000\",\"HELP\":\"" + std::string(2000, 'h') +
            "\",\"TYPE\":\"float\"}]}",
        "{\"INPUTS\":[{\"NAME\":\"b\",\"LABEL\":\"\xff\x80\x80\x80\x80\x80\x80\x80\x80\x80\x80\xfe\",\"TYPE\":\"bool\"}"
        "]}",
        many + "{}]}",
        same + "{}]}"};
    for (const std::string &header : headers) {
        SCOPED_TRACE(header.substr(0, 150));
        const auto p = OpenHeader(header);
        EXPECT_LE(p->pModule->apControl.size(), (size_t)CONTROLS_MAX);
        for (const auto &pctl : p->pModule->apControl) {
            const std::u16string all(pctl->Base.szName, CONTROL_TEXT);
            EXPECT_NE(std::u16string::npos, all.find(std::u16string(2, u'\0')));
            EXPECT_NE(u'\0', all[0]) << "a control without a name";
            EXPECT_EQ(0, pctl->Base.szDescription[CONTROL_TEXT - 1]);
            if (pctl->Base.dwType == CONTROLTYPE_FLOAT) {
                EXPECT_LE(pctl->Float.fAbsMin, pctl->Float.fValue);
                EXPECT_GE(pctl->Float.fAbsMax, pctl->Float.fValue);
            }
        }
        p->Draw(2);
    }
}

TEST_F(ShaderInputs, WithoutARecordFromTheHostKeepTheirDefaults)
{
    nRecordsGranted = 2;
    const auto p = OpenHeader(
        "{\"INPUTS\":[{\"NAME\":\"a\",\"TYPE\":\"color\"},{\"NAME\":\"b\",\"TYPE\":\"long\",\"VALUES\":[1]}]}");
    nRecordsGranted = CONTROLS_MAX;
    EXPECT_EQ(2u, p->pModule->apControl.size());
    p->Draw();
}

TEST_F(ShaderInputs, AreAskedForOnlyInTheFirstComment)
{
    const std::string input = "{\"INPUTS\":[{\"NAME\":\"a\",\"TYPE\":\"float\"}]}", body = "void main() {}\n";
    EXPECT_EQ(1u, Open("// By me\n#version 330\n/* Licence */ /** " + input + " */" + body)->pModule->apControl.size());
    EXPECT_EQ(0u, Open(body + "/*" + input + "*/")->pModule->apControl.size());
    EXPECT_EQ(0u, Open("/*" + input)->pModule->apControl.size()) << "the comment does not end";
}

} // namespace
