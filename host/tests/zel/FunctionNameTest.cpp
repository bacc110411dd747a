#include <zel/ZelLog.h>

#include <string>

namespace {

using zel::logging::functionName;

TEST(FunctionName, RemovesResultTypeAndParameters) {
    EXPECT_EQ(functionName("void ZelUnified::ConfigAdapter::addConfigStore(std::shared_ptr<ZelUnified::ConfigStore>)"),
              "ZelUnified::ConfigAdapter::addConfigStore");
    EXPECT_EQ(functionName("bool ZelUnified::InMemoryConfigStore::isLocal() const"),
              "ZelUnified::InMemoryConfigStore::isLocal");
    EXPECT_EQ(functionName("static std::string KyrCoreUtils::FileUtils::getFileName(const std::string&)"),
              "KyrCoreUtils::FileUtils::getFileName");
    EXPECT_EQ(functionName("const std::wstring &ZelUnified::ConfigValueImpl::getKey() const"),
              "ZelUnified::ConfigValueImpl::getKey");
    EXPECT_EQ(functionName("virtual char* ns::A::raw()"), "ns::A::raw");
    EXPECT_EQ(functionName("int main(int, char**)"), "main");
}

TEST(FunctionName, KeepsConstructorsAndDestructors) {
    EXPECT_EQ(functionName("ZelUnified::BootstrapConfigStore::BootstrapConfigStore(const string&, int)"),
              "ZelUnified::BootstrapConfigStore::BootstrapConfigStore");
    EXPECT_EQ(functionName("virtual ZelUnified::ConfigAdapter::~ConfigAdapter()"),
              "ZelUnified::ConfigAdapter::~ConfigAdapter");
}

TEST(FunctionName, RemovesResultTypesWithTemplateArguments) {
    EXPECT_EQ(functionName("std::map<std::__cxx11::basic_string<wchar_t>, std::function<void(int)> > ns::A::all()"),
              "ns::A::all");
    EXPECT_EQ(functionName("std::vector<const char *> ns::A::names() const"), "ns::A::names");
}

TEST(FunctionName, RemovesTheListOfTemplateArgumentsAtTheEnd) {
    EXPECT_EQ(functionName("void ns::A::put(T) [with T = int]"), "ns::A::put");
    EXPECT_EQ(functionName("void ns::A::put(T) [T = int]"), "ns::A::put");
    EXPECT_EQ(functionName("std::string ns::f(const T&) [with T = std::function<void()>; std::string = x]"), "ns::f");
    EXPECT_EQ(functionName("void __cdecl ns::A::put<int>(int)"), "ns::A::put");
}

TEST(FunctionName, KeepsArgumentsOfTheEnclosingClass) {
    EXPECT_EQ(functionName("void ns::Map<T>::add(T) [with T = int]"), "ns::Map<T>::add");
}

TEST(FunctionName, ReturnsTheFunctionThatContainsALambda) {
    EXPECT_EQ(functionName("ns::A::run(int)::<lambda(bool)>"), "ns::A::run");
    EXPECT_EQ(functionName("ns::A::run(int) const::<lambda(auto:1)> mutable [with auto:1 = int]"), "ns::A::run");
    EXPECT_EQ(functionName("auto ns::A::run(int)::(anonymous class)::operator()(bool) const"), "ns::A::run");
    EXPECT_EQ(functionName("auto ns::A::run(int)::(lambda at a.cpp:3:5)::operator()() const"), "ns::A::run");
    EXPECT_EQ(functionName("auto __cdecl ns::A::run::<lambda_1>::operator ()(bool) const"), "ns::A::run");
}

TEST(FunctionName, KeepsUnnamedNamespaces) {
    EXPECT_EQ(functionName("void ns::(anonymous namespace)::helper(int)"), "ns::(anonymous namespace)::helper");
    EXPECT_EQ(functionName("bool (anonymous namespace)::helper()"), "(anonymous namespace)::helper");
    EXPECT_EQ(functionName("void ns::{anonymous}::helper(int)"), "ns::{anonymous}::helper");
    EXPECT_EQ(functionName("void __cdecl ns::`anonymous-namespace'::helper(int)"), "ns::`anonymous-namespace'::helper");
}

TEST(FunctionName, KeepsTheNamesOfOperators) {
    EXPECT_EQ(functionName("bool ns::Less::operator()(int, int) const"), "ns::Less::operator()");
    EXPECT_EQ(functionName("bool ns::Less::operator ()(int) const"), "ns::Less::operator ()");
    EXPECT_EQ(functionName("bool ns::A::operator<(const ns::A&) const"), "ns::A::operator<");
    EXPECT_EQ(functionName("ns::A& ns::A::operator<<(int)"), "ns::A::operator<<");
    EXPECT_EQ(functionName("T* ns::Pointer<T>::operator->() const [with T = int]"), "ns::Pointer<T>::operator->");
    EXPECT_EQ(functionName("ns::A::operator bool() const"), "ns::A::operator bool");
    EXPECT_EQ(functionName("ns::A& ns::A::operator=(const ns::A&)"), "ns::A::operator=");
    EXPECT_EQ(functionName("void ns::operators(int)"), "ns::operators");
}

TEST(FunctionName, RemovesResultTypesThatContainParentheses) {
    EXPECT_EQ(functionName("decltype(auto) ns::A::get()"), "ns::A::get");
    EXPECT_EQ(functionName("void (* ns::A::handler())(int)"), "ns::A::handler");
    EXPECT_EQ(functionName("int (&ns::A::table())[3]"), "ns::A::table");
}

TEST(FunctionName, LeavesABareNameUnchanged) {
    EXPECT_EQ(functionName("main"), "main");
    EXPECT_EQ(functionName(""), "");
}

struct Place {
    const char* file;
    int line;
    std::string function;
};

Place placeOf(const char* file, int line, std::string_view function) {
    return {file, line, std::string(function)};
}

class Logging {
public:
    Place logPlace() const { return placeOf(ZEL_HERE); }
    Place logPlaceFromLambda() const {
        return [] { return placeOf(ZEL_HERE); }();
    }
    template <class T>
    static Place logPlaceAs(T) {
        return placeOf(ZEL_HERE);
    }
};

TEST(FunctionName, ThePlaceOfAMemberHasItsFunctionFileAndLine) {
    const Place place = Logging().logPlace();
    EXPECT_TRUE(place.function.ends_with("::Logging::logPlace")) << place.function;
    EXPECT_TRUE(std::string(place.file).ends_with("FunctionNameTest.cpp"));
    EXPECT_GT(place.line, 0);
}

TEST(FunctionName, ThePlaceOfALambdaOrATemplateHasItsFunction) {
    const std::string lambda = Logging().logPlaceFromLambda().function;
    EXPECT_TRUE(lambda.ends_with("::Logging::logPlaceFromLambda")) << lambda;
    const std::string instance = Logging::logPlaceAs(std::string()).function;
    EXPECT_TRUE(instance.ends_with("::Logging::logPlaceAs")) << instance;
}

} // namespace
