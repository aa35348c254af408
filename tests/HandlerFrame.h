// Calls a function handler on a frame made by hand, without an evaluation around it.
#pragma once

#include "RecordedMessages.h"
#include "torvelan/torvelan.h"

#include <gtest/gtest.h>

#include <cstring>
#include <deque>
#include <functional>
#include <string>
#include <vector>

class HandlerFrame : public testing::Test {
protected:
    using Reals = std::vector<double>;
    using Pairs = std::vector<complex>;
    using Strings = std::vector<char const *>;

    // Arguments; they live as long as the test.
    XYVector & real(Reals const & values, PhysType type = PT_UNKNOWN) {
        XYVector & v = make("real", type);
        v.setSize(static_cast<std::int64_t>(values.size()), VD_REAL);
        if (!values.empty()) std::copy(values.begin(), values.end(), v.writableRealData());
        return v;
    }
    XYVector & pairs(Pairs const & values, PhysType type = PT_UNKNOWN) {
        XYVector & v = make("complex", type);
        v.setSize(static_cast<std::int64_t>(values.size()), VD_COMPLEX);
        if (!values.empty()) std::copy(values.begin(), values.end(), v.writableComplexData());
        return v;
    }
    XYVector & strings(Strings const & values) {
        XYVector & v = make("string", PT_UNKNOWN);
        v.setSize(static_cast<std::int64_t>(values.size()), VD_STRING);
        for (std::size_t i = 0; i < values.size(); ++i)
            if (values[i] != nullptr) v.setString(values[i], static_cast<std::int64_t>(i));
        return v;
    }
    XYVector & withReference(XYVector & v, Reals const & x, PhysType type = PT_TIME) {
        v.ref.setSize(static_cast<std::int64_t>(x.size()), VD_REAL);
        std::copy(x.begin(), x.end(), v.ref.writableRealData());
        v.ref.setPhysType(type);
        v.ref.setName("x");
        return v;
    }

    FUNC_ERROR call(FuncHandler handler, std::vector<std::reference_wrapper<XYVector>> const & arguments) {
        y = NamedVector("y");
        ref = NamedVector("ref");
        messages->clear();
        FuncArgs args("test");
        args.setNumArgs(static_cast<int>(arguments.size()));
        for (XYVector & v : arguments) args.add(&v, &v.ref);
        FuncResult result;
        result.add(&y, &ref);
        result.beginCall();
        FuncInfo info;
        return handler(args, &result, &info, messages, *messages, ScpParseContext(messages));
    }
    FUNC_ERROR callFunctionNamed(char const * name, std::vector<std::reference_wrapper<XYVector>> const & arguments) {
        FuncInfo const * info = vec_FindFunction(name);
        if (info == nullptr) {
            ADD_FAILURE() << "no function " << name;
            return FUNC_NO_RESULT;
        }
        return call(info->handler, arguments);
    }

    Reals reals() const {
        EXPECT_TRUE(y.isReal());
        return {y.realData(), y.realData() + (y.realData() != nullptr ? y.length() : 0)};
    }
    Pairs complexes() const {
        EXPECT_TRUE(y.isComplex());
        return {y.complexData(), y.complexData() + (y.complexData() != nullptr ? y.length() : 0)};
    }
    std::vector<std::string> texts() const {
        std::vector<std::string> out;
        for (std::int64_t i = 0; i < y.length(); ++i) {
            char const * text = y.getString(i);
            out.emplace_back(text != nullptr ? text : "(null)");
        }
        return out;
    }
    std::string message() const { return messages->texts.size() == 1 ? messages->texts[0] : ""; }
    bool isSilent() const { return messages->texts.empty(); }

    EngineSession session;
    std::shared_ptr<RecordedMessages> messages = std::make_shared<RecordedMessages>();
    NamedVector y, ref;

private:
    XYVector & make(char const * name, PhysType type) {
        XYVector & v = vectors.emplace_back(YString(name));
        v.setPhysType(type);
        return v;
    }
    std::deque<XYVector> vectors;
};
