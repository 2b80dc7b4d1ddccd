#include "host/jet/expression/expression.h"

#include <gtest/gtest.h>

#include <ctime>
#include <map>

#include "base/encoding.h"
#include "base/text.h"
#include "host/jet/format/error.h"
#include "host/jet/values/value_convert.h"

namespace sg::jet {
namespace {

class Names : public ExpressionNames {
  public:
    bool value(std::wstring_view name, Value& into) const override {
        const auto found = values.find(lowerCased(name));
        if (found == values.end()) {
            return false;
        }
        into = found->second;
        return true;
    }

    std::map<std::wstring, Value> values;
};

Date fixedTime() {
    return {42766.604166666664};  // 2017-01-31 14:30:00
}

// The kind of a value and what it says: "i5" Integer, "l5" Long, "d0.5" Double...
std::string shown(const Value& value) {
    static constexpr const char* kinds[] = {"Null", "",  "b", "i", "l", "q", "c",
                                            "s",    "d", "t", "'", "x", "",  "m"};
    std::wstring text;
    if (const auto* boolean = std::get_if<bool>(&value)) {
        text = *boolean ? L"True" : L"False";
    } else if (const auto* date = std::get_if<Date>(&value)) {
        text = toText(*date);
    } else if (const auto* decimal = std::get_if<Decimal>(&value)) {
        text = toText(*decimal);
    } else {
        text = toInvariantText(value);
    }
    return kinds[value.index()] + toUtf8(text);
}

class ExpressionTest : public testing::Test {
  protected:
    ExpressionTest() {
        setExpressionClock(fixedTime);
        names_.values = {
            {L"area", 12.5},         {L"name", L"Küche"},
            {L"empty", Value()},     {L"price", Currency{25000}},
            {L"single", 0.1f},       {L"big", int64_t{9007199254740993}},
            {L"rooms.no", 7},        {L"born", Date{-1.25}},
            {L"byte", uint8_t{200}}, {L"done", true},
            {L"bytes", Bytes{1, 0}}, {L"two words", int16_t{3}},
        };
    }
    ~ExpressionTest() override { setExpressionClock(nullptr); }

    std::string evaluated(const wchar_t* text) const {
        try {
            return shown(Expression::parse(text).evaluate(names_));
        } catch (const Error& e) {
            return "error " + std::to_string(e.code());
        }
    }
    struct Case {
        const wchar_t* text;
        const char* result;
    };
    void check(const std::vector<Case>& cases) const {
        for (const Case& c : cases) {
            EXPECT_EQ(evaluated(c.text), c.result) << toUtf8(c.text);
        }
    }
    std::string ruled(const wchar_t* rule, const Value& value) {
        names_.values[L""] = value;
        try {
            return Expression::parseRule(rule).isMet(names_) ? "met" : "not met";
        } catch (const Error& e) {
            return "error " + std::to_string(e.code());
        }
    }

    Names names_;
};

TEST_F(ExpressionTest, Literals) {
    check({{L"5", "i5"},
           {L"32768", "l32768"},
           {L"2147483648", "d2147483648"},
           {L".5", "d0.5"},
           {L"1.5e3", "d1500"},
           {L"&HFF", "i255"},
           {L"&HFFFF", "i-1"},
           {L"&H10000", "l65536"},
           {L"&O17", "i15"},
           {L"\"a\"\"b\"", "'a\"b"},
           {L"'it''s'", "'it's"},
           {L"#1/31/2017 2:30:00 PM#", "t2017-01-31 14:30:00"},
           {L"#2017-01-31#", "t2017-01-31 00:00:00"},
           {L"= Yes", "True"},
           {L"off", "False"},
           {L" null ", "Null"},
           {L"[Name]", "'Küche"},
           {L"Rooms.[No]", "l7"},
           {L"[rooms]![no]", "l7"},
           {L"[two words]+1", "i4"}});
}

TEST_F(ExpressionTest, Precedence) {
    check({{L"-2^2", "d-4"},
           {L"2^3^2", "d64"},
           {L"2^-1", "d0.5"},
           {L"2+3*4", "i14"},
           {L"(2+3)*4", "i20"},
           {L"10-3-2", "i5"},
           {L"7\\2*2", "i1"},      // * binds tighter than backslash
           {L"7 Mod 4\\2", "i1"},  // which binds tighter than Mod
           {L"7 Mod 4+1", "i4"},
           {L"\"a\" & 1+2", "'a3"},
           {L"1 & 2 = 12", "True"},
           {L"Not 1=2", "True"},
           {L"Not 1=2 And 1=2", "False"},
           {L"1=1 Or 1=1 And 1=2", "True"},
           {L"True Xor True Or True", "False"},
           {L"2 + -3", "i-1"},
           {L"5 > 3 = True", "True"},
           {L"1 < 2 & 3", "True"}});
}

TEST_F(ExpressionTest, NumbersPromote) {
    check({{L"32767+1", "l32768"},
           {L"200*200", "l40000"},
           {L"2147483647+1", "d2147483648"},
           {L"[byte]+[byte]", "i400"},
           {L"[byte]-[byte]", "b0"},
           {L"-[byte]", "i-200"},
           {L"6/2", "d3"},
           {L"7\\2", "i3"},
           {L"-7\\2", "i-3"},
           {L"-7 Mod 2", "i-1"},
           {L"2.5\\1", "l2"},
           {L"3.5\\1", "l4"},
           {L"[price]*2", "c5"},
           {L"[price]+0.00005", "c2.5"},  // to the even ten-thousandth
           {L"[price]+0.00015", "c2.5002"},
           {L"[price]*0.5", "d1.25"},
           {L"[price]/2", "d1.25"},
           {L"[single]+1", "s1.1"},
           {L"[single]+100000", "d100000.100000001"},
           {L"True+True", "i-2"},
           {L"\"5\"+3", "d8"},
           {L"\"5\"+\"3\"", "'53"},
           {L"#2017-01-31#+1", "t2017-02-01 00:00:00"},
           {L"1+#2017-01-31#", "t2017-02-01 00:00:00"},
           {L"#2017-01-31#-#2017-01-01#", "d30"},
           {L"#2017-01-31#-1", "t2017-01-30 00:00:00"},
           {L"1/0", "error 3421"},
           {L"1\\0", "error 3421"},
           {L"1 Mod 0.4", "error 3421"},
           {L"0^-1", "error 3421"},
           {L"(-8)^0.5", "error 3421"},
           {L"1e308*10", "error 3421"},
           {L"3000000000\\1", "error 3421"},
           {L"CCur(900000000000000)+CCur(900000000000000)", "error 3421"},
           {L"#9999-12-31#+1", "error 3421"},
           {L"\"a\"*2", "error 3421"},
           {L"[bytes]+1", "error 3421"}});
}

TEST_F(ExpressionTest, DecimalsAreExact) {
    check(
        {{L"CDec(0.1)+CDec(0.2)", "m0.3"},
         {L"CDec(\"1.50\")*CDec(\"1.50\")", "m2.2500"},
         {L"CDec(1)/3", "m0.3333333333333333333333333333"},
         {L"CDec(2)/3", "m0.6666666666666666666666666667"},
         {L"CDec(1)/8", "m0.125"},
         {L"CDec(10)/CDec(\"0.1\")", "m100"},
         {L"CDec(1)-CDec(\"1.5\")", "m-0.5"},
         {L"-CDec(0)", "m0"},
         {L"[big]+1", "m9007199254740994"},
         {L"CDec(\"9999999999999999999999999999\")+1", "error 3421"},
         {L"CDec(\"9999999999999999999999999999\")+CDec(\"0.4\")", "m9999999999999999999999999999"},
         {L"CDec(1)/CDec(0)", "error 3421"},
         {L"CDec(\"0.10\")=CDec(\"0.1\")", "True"},
         {L"CDec(\"-2\")<CDec(\"0.1\")", "True"},
         {L"Int(CDec(\"-2.5\"))", "m-3"},
         {L"Fix(CDec(\"-2.5\"))", "m-2"},
         {L"Round(CDec(\"2.345\"),2)", "m2.34"},
         {L"CCur(CDec(\"2.34565\"))", "c2.3456"}});
}

TEST_F(ExpressionTest, NullTravels) {
    check({{L"Null+1", "Null"},
           {L"[empty]=Null", "Null"},
           {L"\"a\" & Null", "'a"},
           {L"Null & Null", "Null"},
           {L"-Null", "Null"},
           {L"Not Null", "Null"},
           {L"Null And False", "False"},
           {L"False And Null", "False"},
           {L"True And Null", "Null"},
           {L"Null Or True", "True"},
           {L"Null Or False", "Null"},
           {L"Null Xor True", "Null"},
           {L"Null Eqv True", "Null"},
           {L"False Imp Null", "True"},
           {L"Null Imp True", "True"},
           {L"True Imp Null", "Null"},
           {L"Null Like \"*\"", "Null"},
           {L"1 Between Null And 2", "Null"},
           {L"Null In (1,2)", "Null"},
           {L"1 In (1,Null)", "True"},
           {L"3 In (1,Null)", "Null"},
           {L"3 Not In (1,2)", "True"},
           {L"[empty] Is Null", "True"},
           {L"[area] Is Not Null", "True"},
           {L"Left(Null,2)", "Null"},
           {L"DateAdd(\"d\",Null,Date())", "Null"},
           {L"CLng(Null)", "error 3421"},
           {L"CVar(Null)", "Null"}});
}

TEST_F(ExpressionTest, LogicOfBits) {
    check({{L"6 And 3", "i2"},
           {L"6 Or 3", "i7"},
           {L"6 Xor 3", "i5"},
           {L"Not 0", "i-1"},
           {L"Not 65536", "l-65537"},
           {L"6 Eqv 3", "i-6"},
           {L"6 Imp 3", "i-5"},
           {L"True And 1", "i1"},
           {L"False And 1/0", "False"},  // the right side can't change it
           {L"True & False", "'-10"}});
}

TEST_F(ExpressionTest, Comparisons) {
    check({{L"\"abc\"=\"ABC\"", "True"},
           {L"\"ü\"=\"Ü\"", "True"},
           {L"\"a\"<\"B\"", "True"},
           {L"\"ab\">\"a\"", "True"},
           {L"\"10\"<9", "False"},  // beside a number, a text is one
           {L"\"x\"<9", "error 3421"},
           {L"\"1/31/2017\"=#2017-01-31#", "True"},
           {L"\"yes\"=True", "True"},
           {L"True=-1", "True"},
           {L"[single]=0.1", "True"},
           {L"[price]=2.50001", "True"},
           {L"[big]>CDec(\"9007199254740992\")", "True"},
           {L"5 Between 1 And 5", "True"},
           {L"5 Between 5 And 1", "True"},
           {L"6 Not Between 1 And 5", "True"},
           {L"\"b\" Between \"A\" And \"C\"", "True"},
           {L"2 In (1,1+1)", "True"},
           {L"\"Hall\" Like \"h*\"", "True"},
           {L"12 Like \"1#\"", "True"},
           {L"\"x\" Not Like \"[a-c]\"", "True"},
           {L"[bytes]=[bytes]", "True"},
           {L"[bytes]=\"a\"", "error 3421"}});
}

TEST_F(ExpressionTest, Dates) {
    check({{L"Now()", "t2017-01-31 14:30:00"},
           {L"Date()", "t2017-01-31 00:00:00"},
           {L"Time()", "t1899-12-30 14:30:00"},
           {L"Date$()", "t2017-01-31 00:00:00"},
           {L"Year(Now())*10000+Month(Now())*100+Day(Now())", "l20170131"},
           {L"Hour([born])*100+Minute([born])+Second([born])", "i600"},
           {L"Weekday(#2017-01-31#)", "i3"},
           {L"Weekday(#2017-01-31#,2)", "i2"},
           {L"Weekday(#0100-01-01#)", "i6"},
           {L"DateAdd(\"m\",1,#2017-01-31#)", "t2017-02-28 00:00:00"},
           {L"DateAdd(\"yyyy\",-1,#2016-02-29 10:00#)", "t2015-02-28 10:00:00"},
           {L"DateAdd(\"q\",-5,#2017-01-31#)", "t2015-10-31 00:00:00"},
           {L"DateAdd(\"ww\",1,#2017-01-31#)", "t2017-02-07 00:00:00"},
           {L"DateAdd(\"s\",-1,#1899-12-30#)", "t1899-12-29 23:59:59"},
           {L"DateAdd(\"h\",36,[born])", "t1899-12-30 18:00:00"},
           {L"DateAdd(\"yyyy\",9000,#2017-01-31#)", "error 3001"},
           {L"DateAdd(\"x\",1,#2017-01-31#)", "error 3001"},
           {L"DateDiff(\"yyyy\",#2016-12-31#,#2017-01-01#)", "l1"},
           {L"DateDiff(\"m\",#2017-01-31#,#2016-11-01#)", "l-2"},
           {L"DateDiff(\"q\",#2016-12-31#,#2017-04-01#)", "l2"},
           {L"DateDiff(\"h\",#1:59#,#2:01#)", "l1"},
           {L"DateDiff(\"n\",[born],#1899-12-30#)", "l1080"},
           {L"DateDiff(\"w\",#2017-01-01#,#2017-01-14#)", "l1"},
           {L"DateDiff(\"ww\",#2017-01-07#,#2017-01-08#)", "l1"},
           {L"DateDiff(\"ww\",#2017-01-07#,#2017-01-08#,2)", "l0"},
           {L"DateDiff(\"s\",#0100-01-01#,#9999-12-31#)", "error 3421"},
           {L"DatePart(\"y\",#2016-12-31#)", "i366"},
           {L"DatePart(\"ww\",#2017-01-01#)", "i1"},
           {L"DatePart(\"ww\",#2017-01-01#,2,2)", "i52"},
           {L"DatePart(\"ww\",#2018-12-31#,2,2)", "i1"},
           {L"DatePart(\"ww\",#2017-01-01#,2,3)", "i52"},
           {L"DatePart(\"ww\",#0100-01-01#,2,3)", "i52"},
           {L"DateSerial(2017,14,0)", "t2018-01-31 00:00:00"},
           {L"DateSerial(2016,3,0)", "t2016-02-29 00:00:00"},
           {L"DateSerial(29,1,1)", "t2029-01-01 00:00:00"},
           {L"DateSerial(30,1,1)", "t1930-01-01 00:00:00"},
           {L"DateSerial(10000,1,1)", "error 3001"},
           {L"DateSerial(2017,2147483647,-2147483647)", "error 3001"},
           {L"TimeSerial(12,-30,0)", "t1899-12-30 11:30:00"},
           {L"DateValue(\"2017-01-31 14:30\")", "t2017-01-31 00:00:00"},
           {L"TimeValue(\"2:30 PM\")", "t1899-12-30 14:30:00"},
           {L"MonthName(2)&WeekdayName(1,True,2)", "'FebruaryMon"},
           {L"Year(\"soon\")", "error 3421"}});
}

TEST_F(ExpressionTest, Texts) {
    check({{L"Len(\"Küche\")", "l5"},
           {L"Len(12.5)", "l4"},
           {L"Left(\"abc\",2)&Right(\"abc\",1)&Mid(\"abc\",2)&Mid(\"abc\",2,1)", "'abcbcb"},
           {L"Left$(\"abc\",9)&Right(\"abc\",9)&Mid(\"abc\",4)", "'abcabc"},
           {L"Left(\"abc\",-1)", "error 3001"},
           {L"Mid(\"abc\",0)", "error 3001"},
           {L"\"[\"&Trim(\"  a b  \")&LTrim(\" x \")&RTrim(\" y \")&Trim(\"   \")&\"]\"",
            "'[a bx  y]"},
           {L"UCase(\"straße ü\")&LCase(\"ÄB\")", "'STRAßE Üäb"},
           {L"StrConv(\"the OLD house\",3)&StrConv(\"a\",1)&StrConv(\"B\",2)", "'The Old HouseAb"},
           {L"InStr(\"abcABC\",\"C\")", "l3"},
           {L"InStr(4,\"abcABC\",\"c\")", "l6"},
           {L"InStr(1,\"abcABC\",\"C\",0)", "l6"},
           {L"InStr(\"aabaabaac\",\"aabaac\")", "l4"},
           {L"InStr(\"abc\",\"x\")+InStr(\"\",\"x\")+InStr(9,\"abc\",\"a\")", "l0"},
           {L"InStr(2,\"abc\",\"\")", "l2"},
           {L"InStrRev(\"abcabc\",\"BC\")", "l5"},
           {L"InStrRev(\"abcabc\",\"bc\",5)", "l2"},
           {L"Replace(\"aXbxc\",\"x\",\"--\")", "'a--b--c"},
           {L"Replace(\"aXbxc\",\"x\",\"\",1,1)", "'abxc"},
           {L"Replace(\"aXbxc\",\"x\",\"\",3,-1,0)", "'bc"},
           {L"Space(2)&String(3,\"xy\")&String(2,65)", "'  xxxAA"},
           {L"Chr(128)&ChrW(8364)&Asc(\"€\")&AscW(\"€\")", "'€€1288364"},
           {L"Chr(256)", "error 3001"},
           {L"Asc(\"\")", "error 3001"},
           {L"StrReverse(\"abc\")", "'cba"},
           {L"StrComp(\"a\",\"B\")*100+StrComp(\"a\",\"A\")*10+StrComp(\"a\",\"A\",0)", "i-99"}});
}

TEST_F(ExpressionTest, Numbers) {
    check({{L"Int(-2.5)", "d-3"},
           {L"Fix(-2.5)", "d-2"},
           {L"Int([price])", "c2"},
           {L"Int(7)", "i7"},
           {L"Round(2.5)", "d2"},
           {L"Round(2.345,2)", "d2.34"},
           {L"Round(1.005,2)", "d1"},
           {L"Round(-0.5)", "d0"},
           {L"Abs(-3)", "i3"},
           {L"Abs(-32768)", "l32768"},
           {L"Sgn(-0.1)+Sgn(0)+Sgn(9)", "i0"},
           {L"Sqr(9)+Exp(0)+Log(1)+Sin(0)+Cos(0)+Tan(0)+Atn(0)", "d5"},
           {L"Sqr(-1)", "error 3001"},
           {L"Log(0)", "error 3001"},
           {L"Exp(1000)", "error 3421"},
           {L"Hex(255)&Hex(-1)&Hex(-65537)&Oct(8)", "'FFFFFFFFFEFFFF10"},
           {L"Val(\" 1 2.5e1 rooms\")", "d125"},
           {L"Val(\"&HFF\")+Val(\"x\")+Val(\"\")+Val(\"-\")+Val(\"inf\")", "d255"},
           {L"Val(\"-.5\")", "d-0.5"},
           {L"Rnd()>=0 And Rnd()<1", "True"},
           {L"Rnd(-5)=Rnd(-5)", "True"},
           {L"Rnd(-1e308)<1", "True"},
           {L"Len(GenGUID())=38 And Mid(GenGUID(),16,1)=\"4\"", "True"},
           {L"GenGUID()<>GenGUID()", "True"}});
}

TEST_F(ExpressionTest, ChoiceAndConversions) {
    check({{L"IIf([area]>10,\"big\",1/0)", "'big"},  // only the answer is evaluated
           {L"IIf(Null,1,2)", "i2"},
           {L"Switch(False,1,True,2)", "i2"},
           {L"Switch(False,1)", "Null"},
           {L"Switch(False,1,True)", "error 3001"},
           {L"Choose(2.9,\"a\",\"b\",\"c\")", "'b"},
           {L"Choose(4,\"a\",\"b\",\"c\")", "Null"},
           {L"Nz([empty])&Nz([empty],7)&Nz(3,1/0)", "'73"},
           {L"IsNull([empty])", "True"},
           {L"IsNumeric(\"1e3\") And Not IsNumeric(\"x\") And Not IsNumeric(Null)", "True"},
           {L"IsNumeric(Now())", "False"},
           {L"IsDate(\"2017-01-31\") And IsDate(Now()) And Not IsDate(5)", "True"},
           {L"CInt(2.5)", "i2"},
           {L"CInt(\"3.5\")", "i4"},
           {L"CInt(40000)", "error 3421"},
           {L"CByte(-1)", "error 3421"},
           {L"CLng(True)", "l-1"},
           {L"CDbl(\"1.5\")", "d1.5"},
           {L"CSng(0.1)", "s0.1"},
           {L"CCur(1.00005)", "c1"},
           {L"CDate(\"1/31/2017\")", "t2017-01-31 00:00:00"},
           {L"CDate(1.5)", "t1899-12-31 12:00:00"},
           {L"CDate(1e9)", "error 3421"},
           {L"CBool(\"on\") And CBool(2) And Not CBool(0)", "True"},
           {L"CStr([done])&CStr(1.50)", "'-11.5"},
           {L"Str(5)&Str(-0.5)&Str(0.5)", "' 5-.5 .5"}});
}

TEST_F(ExpressionTest, FormatOfNumbers) {
    check(
        {{L"Format(1234.5,\"Standard\")&\"|\"&Format(1234.5,\"Fixed\")", "'1,234.50|1234.50"},
         {L"Format(-1234.5,\"currency\")", "'($1,234.50)"},
         {L"Format(0.125,\"Percent\")", "'12.50%"},
         {L"Format(1234.5,\"Scientific\")", "'1.23E+03"},
         {L"Format(0.00009996,\"0.00E+00\")", "'1.00E-04"},
         {L"Format(0,\"0.00E+00\")", "'0.00E+00"},
         {L"Format(True,\"Yes/No\")&Format(0,\"On/Off\")&Format(3,\"True/False\")", "'YesOffTrue"},
         {L"Format(2.5,\"0\")&Format(0.125,\"0.00\")", "'30.13"},  // half away from zero
         {L"Format(9.995,\"0.00\")", "'10.00"},
         {L"Format(5,\"000\")&Format(0,\"#\")&Format(0.5,\"#.##\")", "'005.5"},
         {L"Format(5,\"0.#\")", "'5."},
         {L"Format(1234567,\"#,##0\")&Format(1234567,\"0,\")", "'1,234,5671235"},
         {L"Format(123456789,\"000-00-0000\")", "'123-45-6789"},
         {L"Format(-5,\"0.0\")&Format(-0.01,\"0.0\")", "'-5.00.0"},
         {L"Format(-5,\"0;(0);zero\")&Format(0,\"0;(0);zero\")", "'(5)zero"},
         {L"Format(Null,\"0;;;none\")&Format(Null,\"0\")", "'none"},
         {L"Format(-5,\"$0;;\\z\")", "'-$5"},
         {L"Format(7,\"\"\"No. \"\"0\\0\")", "'No. 70"},
         {L"Format(CDec(\"1234567890123456789.555\"),\"#,##0.00\")",
          "'1,234,567,890,123,456,789.56"},
         {L"Format(1e300,\"0\")=String(1,\"1\")&String(300,\"0\")", "True"},
         {L"Format(\"x\",\"0.00\")&Format(\"2\",\"0.00\")", "'x2.00"}});
}

TEST_F(ExpressionTest, FormatOfDatesAndTexts) {
    check({{L"Format(Now(),\"Long Date\")", "'Tuesday, January 31, 2017"},
           {L"Format(Now(),\"medium date\")&\" \"&Format(Now(),\"Short Date\")",
            "'31-Jan-17 1/31/2017"},
           {L"Format(Now(),\"Long Time\")&\" \"&Format(Now(),\"Medium Time\")&\" \"&"
            L"Format(Now(),\"Short Time\")",
            "'2:30:00 PM 02:30 PM 14:30"},
           {L"Format(Now(),\"yyyy-mm-dd hh:mm:ss\")", "'2017-01-31 14:30:00"},
           {L"Format(Now(),\"d.m.yy h a/p\")", "'31.1.17 2 p"},
           {L"Format(Now(),\"w ww q y ddd mmm\")", "'3 5 1 31 Tue Jan"},
           {L"Format(Now(),\"ddddd ttttt\")", "'1/31/2017 2:30:00 PM"},
           {L"Format(42766,\"yyyy\")&Format(\"1/31/2017\",\"mm\")", "'201701"},
           {L"Format(#0:05#,\"h:n AMPM\")", "'12:5 AM"},
           {L"Format(Now(),\"\"\"day\"\" d\\d\")", "'day 31d"},
           {L"Format(Now(),\"0.0\")", "'42766.6"},
           {L"Format(\"soon\",\"yyyy\")", "'soon"},
           {L"Format(\"ab\",\">\")&Format(\"AB\",\"<\")", "'ABab"},
           {L"Format(\"abc\",\"@@-@@\")", "' a-bc"},
           {L"Format(\"abc\",\"!@@-@@\")", "'ab-c "},
           {L"Format(\"abcd\",\"&-&\")", "'abc-d"},
           {L"Format(\"abcd\",\"!&-&\")", "'a-bcd"}});
}

TEST_F(ExpressionTest, WhatIsNotAnExpression) {
    for (const wchar_t* text :
         {L"",         L"=",           L"1 +",       L"1 2",      L"(1",     L"1)",
          L"\"open",   L"#soon#",      L"#1/1/2017", L"1a",       L"1.2.3",  L"&H",
          L"&HG",      L"&H123456789", L"a ? b",     L"1 = > 2",  L"* 2",    L"Len()",
          L"Len(1,2)", L"Len(1",       L"Len 1",     L"[Len](1)", L"x Is 5", L"x Between 1",
          L"x In 1",   L"x In ()",     L"And",       L"a.",       L"1 Like", L"> 5",
          L"Is Null"}) {
        EXPECT_EQ(evaluated(text), "error 3075") << toUtf8(text);
    }
    for (const wchar_t* text : {L"[open", L"[]"})
        EXPECT_EQ(evaluated(text), "error 3126") << toUtf8(text);
    try {
        Expression::parse(L"1 +* 2");
        ADD_FAILURE();
    } catch (const Error& e) {
        EXPECT_EQ(e.text(), L"Syntax error (missing operator) in query expression '1 +* 2'.");
    }
    try {
        Expression::parse(L"DoIt(1)");
        ADD_FAILURE();
    } catch (const Error& e) {
        EXPECT_EQ(e.code(), 3085);
        EXPECT_EQ(e.names().at(0), L"DoIt");
    }
    try {
        Expression::parse(L"1 + Gone.Name").evaluate(names_);
        ADD_FAILURE();
    } catch (const Error& e) {
        EXPECT_EQ(e.text(), L"Too few parameters. Expected 1.");
        EXPECT_EQ(e.place().detail, L"Gone.Name");
    }
}

TEST_F(ExpressionTest, DepthLengthAndWorkAreBounded) {
    const auto repeated = [](const wchar_t* text, size_t count) {
        std::wstring result;
        for (size_t i = 0; i < count; ++i) {
            result += text;
        }
        return result;
    };
    for (const std::wstring& text :
         {repeated(L"(", 5000) + L"1" + repeated(L")", 5000), repeated(L"-", 5000) + L"1",
          repeated(L"Not ", 3000) + L"1", L"1" + repeated(L"+1", 5000),
          L"1" + repeated(L"^1", 5000), repeated(L"Len(", 3000),
          L"\"" + std::wstring(20000, L'x') + L"\""}) {
        EXPECT_EQ(evaluated(text.c_str()), "error 3075") << toUtf8(text.substr(0, 10));
    }
    EXPECT_EQ(evaluated((L"1" + repeated(L"+1", 300)).c_str()), "i301");
    EXPECT_EQ(evaluated((repeated(L"(", 100) + L"1" + repeated(L")", 100)).c_str()), "i1");
    check({{L"Space(2000000)", "error 3001"},
           {L"Len(Replace(Space(1000000),\" \",Space(1000)))", "error 3001"},
           {L"Space(1000000) & Space(1000000)", "error 3001"},
           {L"String(1000000,\"a\") Like \"*\" & String(100000,\"a\") & \"b*\"", "error 3001"},
           {L"InStr(String(1000000,\"a\"),String(500000,\"a\")&\"b\")", "l0"}});
}

TEST_F(ExpressionTest, RulesLeaveOutTheirLeftSide) {
    const struct {
        const wchar_t* rule;
        Value value;
        const char* result;
    } cases[] = {
        {L">=0", 0, "met"},
        {L">=0", -1, "not met"},
        {L"> 0 And < 100", 100, "not met"},
        {L"> 0 And < 100", 99.5, "met"},
        {L"(>0 And <10) Or =99", 99, "met"},
        {L"Not >5", 5, "met"},
        {L"Between 0 And 1", 0.5f, "met"},
        {L"Between 0 And 1 Or Between 5 And 6", 3, "not met"},
        {L"Not Between 0 And 1", 2, "met"},
        {L"In ('a','b')", L"B", "met"},
        {L"Not In ('a','b')", L"B", "not met"},
        {L"Like \"A*\" And Not Like \"*z\"", L"abz", "not met"},
        {L"Is Not Null", Value(), "not met"},
        {L"Is Null Or >5", Value(), "met"},
        {L"Not Null", Value(), "not met"},
        {L"Not Null", 1, "met"},
        {L"Null Or 5", Value(), "met"},
        {L"\"a\" Or \"b\"", L"b", "met"},
        {L"\"a\" Or \"b\"", L"c", "not met"},
        {L"2+3", 5, "met"},
        {L"<Date()", Date{42766}, "not met"},
        {L"<Date()", Date{42765}, "met"},
        {L">=0", Value(), "met"},  // what is not known is not refused
        {L"[area] > 10", 0, "met"},
        {L"Len([name])", 0, "met"},  // true, since it isn't zero
        {L"> [area]", 12, "not met"},
        {L">5", L"many", "error 3421"},
        {L">", 0, "error 3075"},
        {L"IIf(>5,1,2)", 0, "error 3075"},
        {L"5 > > 3", 0, "error 3075"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(ruled(c.rule, c.value), c.result) << toUtf8(c.rule) << " of " << shown(c.value);
    }
}

TEST(LikeTest, Patterns) {
    const struct {
        const wchar_t* text;
        const wchar_t* pattern;
        bool matches;
    } cases[] = {
        {L"", L"", true},           {L"", L"*", true},
        {L"", L"?", false},         {L"a", L"", false},
        {L"Abc", L"aBC", true},     {L"abc", L"a?c", true},
        {L"abc", L"a*", true},      {L"abc", L"*c", true},
        {L"abc", L"*b*", true},     {L"abc", L"*x*", false},
        {L"aXbXc", L"a*xc", true},  {L"aab", L"*ab", true},
        {L"abab", L"*ab*ab", true}, {L"ab", L"*ab*ab", false},
        {L"a5", L"a#", true},       {L"ab", L"a#", false},
        {L"b", L"[a-c]", true},     {L"B", L"[a-c]", true},
        {L"d", L"[a-c]", false},    {L"d", L"[!a-c]", true},
        {L"-", L"[a-]", true},      {L"!", L"[!]", true},
        {L"*", L"[*]", true},       {L"x", L"[*]", false},
        {L"a[b", L"a[[]b", true},   {L"ab", L"a[]b", true},
        {L"", L"*[]", true},        {L"a", L"[c-a]", false},
        {L"[a", L"[a", false},      {L"]", L"]", true},
        {L"ä", L"[Ä]", true},       {L"abc", L"[a-c][a-c][!x]", true},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(isLike(c.text, c.pattern), c.matches)
            << toUtf8(c.text) << " like " << toUtf8(c.pattern);
    }
}

TEST(ClockTest, SystemTimeIsLocalAndWhole) {
    const Names names;
    const Value now = Expression::parse(L"Now()").evaluate(names);
    std::time_t seconds = std::time(nullptr);
    std::tm local{};
    ::localtime_r(&seconds, &local);
    // Midnight may pass between the two.
    EXPECT_NEAR(partsOf(std::get<Date>(now)).year, local.tm_year + 1900, 1);
    EXPECT_EQ(shown(Expression::parse(L"Now()-Date()<1 And Time()<1").evaluate(names)), "True");
}

}  // namespace
}  // namespace sg::jet
