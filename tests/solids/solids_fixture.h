#pragma once

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "module/module_fixture.h"
#include "solids/recording_solid.h"

namespace sg::test {

// A host with the module and the recording companion, and a program that makes sections:
// (run x y z x y z width height) is one between two points, (with LIST number value ...) one with
// other values at these places, which count from 1. (shown RESULT) has "e" for entity names, and
// numbers of at most four decimals.
class SolidsTest : public ModuleTest {
  protected:
    SolidsTest() {
        solids = {};
        options.staticModules.push_back({L"qn_qn-solid2017.dbx", recordingCompanion});
    }
    ~SolidsTest() override {
        stop();
        EXPECT_EQ(solids.alive, 0);
    }
    void SetUp() override {
        start();
        eval(
            R"((defun run (a b c d e f w h) (list a b c d e f 0 0.0 0.0 w h "RC" 0.0 0.0 "" "" 0 1.0))
                (defun put (items number value)
                  (if (= number 1)
                    (cons value (cdr items))
                    (cons (car items) (put (cdr items) (1- number) value))))
                (defun with (items number value) (put items number value))
                (defun rounded (x) (/ (fix (+ (* x 1e4) (if (minusp x) -0.5 0.5))) 1e4))
                (defun shown (r)
                  (cond ((= (type r) 'ENAME) 'e)
                        ((= (type r) 'REAL) (rounded r))
                        ((atom r) r)
                        (t (cons (shown (car r)) (shown (cdr r))))))
                (setq level (run 0.0 0.0 0.0 20.0 0.0 0.0 12.0 8.0)
                      onward (run 20.0 0.0 0.0 20.0 20.0 0.0 12.0 8.0))
                (defun count (/ all) (if (setq all (ssget "X")) (sslength all) 0)))");
    }

    // What a call answers, and what it asked of solids meanwhile.
    std::string call(const std::string& form) {
        solids.lines.clear();
        return eval("(shown " + form + ")");
    }
    int entities() { return std::stoi(eval("(count)")); }
    const std::vector<std::string>& lines() const { return solids.lines; }
};

}  // namespace sg::test
