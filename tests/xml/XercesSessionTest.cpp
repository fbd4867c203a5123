#include <ConfigurationFramework/ConfigWriter.h>
#include <ConfigurationFramework/XsdConfigReader.h>
#include <System/XercesInitializationMutex.h>

#include <ReaderSupport.h>
#include <TestSupport.h>

#include <gmock/gmock.h>

#include <future>
#include <stdexcept>

#include <boost/thread/lock_types.hpp>
#include <dlfcn.h>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/RuntimeException.hpp>

// This program is between the library and Xerces-C++: the dynamic linker takes its Initialize() and
// Terminate() before those of Xerces, which they call.

namespace {

struct XercesCalls {
    int initialize = 0; ///< without failed calls
    int terminate = 0;
    int unlocked = 0;  ///< calls of either without the suite-wide mutex
    bool fail = false; ///< whether Initialize() throws
    std::string locale;

    int open() const { return initialize - terminate; }
};

XercesCalls s_calls;

/// Asks on another thread: a thread must not try to lock what it has locked.
bool isMutexFree() {
    return std::async(std::launch::async,
                      [] {
                          const boost::unique_lock<boost::mutex> lock(
                              Orvant::XercesInitializationMutex::getMutex(), boost::try_to_lock);
                          return lock.owns_lock();
                      })
        .get();
}

/// @return the function of the same name that the dynamic linker would have taken
template <typename Function>
Function* hiddenBy(Function* function) {
    Dl_info info{};
    void* hidden = nullptr;
    if (dladdr(reinterpret_cast<void*>(function), &info) != 0 && info.dli_sname != nullptr)
        hidden = dlsym(RTLD_NEXT, info.dli_sname);
    if (hidden == nullptr)
        throw std::runtime_error("no Xerces function is hidden");
    return reinterpret_cast<Function*>(hidden);
}

} // namespace

XERCES_CPP_NAMESPACE_BEGIN

void XMLPlatformUtils::Initialize(const char* const locale, const char* const nlsHome,
                                  PanicHandler* const panicHandler,
                                  MemoryManager* const memoryManager) {
    using Function = void(const char*, const char*, PanicHandler*, MemoryManager*);
    s_calls.unlocked += isMutexFree() ? 1 : 0;
    s_calls.locale = locale;
    if (s_calls.fail)
        ThrowXML1(RuntimeException, XMLExcepts::Scan_CouldNotOpenSource, u"the catalogue");
    hiddenBy<Function> (&Initialize)(locale, nlsHome, panicHandler, memoryManager);
    ++s_calls.initialize;
}

void XMLPlatformUtils::Terminate() {
    s_calls.unlocked += isMutexFree() ? 1 : 0;
    hiddenBy<void()> (&Terminate)();
    ++s_calls.terminate;
}

XERCES_CPP_NAMESPACE_END

namespace Orvant {
namespace {

using Support::configuration;
using Support::openBody;
using Support::openString;
using Support::readInt;
using Support::refusal;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

const std::string answer = configuration("<Answer>42</Answer>");

class XercesInitialization : public testing::Test {
protected:
    /// Counts from 0, after the first use of the library in the process, which is made here.
    XercesInitialization() {
        callsOfFirstUse();
        s_calls = {};
    }
    ~XercesInitialization() override { EXPECT_EQ(0, s_calls.unlocked); }

    static const XercesCalls& callsOfFirstUse() {
        static const XercesCalls s_callsOfFirstUse = [] {
            ConfigWriter("1.0").putInt("A", 1, "");
            return s_calls;
        }();
        return s_callsOfFirstUse;
    }
};

TEST_F(XercesInitialization, IsKeptOnceForTheProcess) {
    EXPECT_EQ(2, callsOfFirstUse().initialize) << "the writer's own and the one that is kept";
    EXPECT_EQ(1, callsOfFirstUse().terminate);
    EXPECT_EQ(0, callsOfFirstUse().unlocked);
}

TEST_F(XercesInitialization, HasTheDefaultLocale) {
    openString(answer);
    EXPECT_EQ(xercesc::XMLUni::fgXercescDefaultLocale, s_calls.locale);
}

TEST_F(XercesInitialization, IsMadeByEachReaderAndNotGivenBack) {
    {
        auto first = openString(answer);
        EXPECT_EQ(1, s_calls.initialize);
        auto second = openString(answer);
        EXPECT_EQ(2, s_calls.initialize);
        EXPECT_EQ(42, readInt(first, "Answer"));
    }
    EXPECT_EQ(2, s_calls.initialize);
    EXPECT_EQ(0, s_calls.terminate);
}

TEST_F(XercesInitialization, IsMadeByAReaderThatRefuses) {
    EXPECT_TRUE(refusal([] { openString("<Settings/>"); }));
    EXPECT_TRUE(refusal([] { openString(""); }));
    EXPECT_EQ(2, s_calls.initialize);
    EXPECT_EQ(0, s_calls.terminate);
}

TEST_F(XercesInitialization, IsGivenBackByEachWriter) {
    {
        ConfigWriter fresh("1.0");
        EXPECT_EQ(1, s_calls.initialize);
        ConfigWriter loaded(FileName(), answer);
        EXPECT_EQ(2, s_calls.initialize);
        loaded.getAsString();
        EXPECT_EQ(0, s_calls.terminate) << "as long as they live";
    }
    EXPECT_EQ(2, s_calls.initialize);
    EXPECT_EQ(2, s_calls.terminate);
}

TEST_F(XercesInitialization, IsGivenBackByAWriterThatRefuses) {
    int refusals = 0;
    for (const std::string content : {"", "<Configuration", "<Settings/>"})
        if (refusal([&] { ConfigWriter(FileName(), content); }))
            ++refusals;
    EXPECT_EQ(3, refusals);
    EXPECT_EQ(3, s_calls.initialize);
    EXPECT_EQ(3, s_calls.terminate);
}

TEST_F(XercesInitialization, OutlivesAllWriters) {
    auto reader = openString(answer);
    for (int i = 0; i < 10; ++i) {
        ConfigWriter writer("1.0");
    }
    EXPECT_EQ(1, s_calls.open());
    EXPECT_EQ(42, readInt(reader, "Answer"));
}

/// The error log of a name while no initialisation succeeds.
class FailingInitialization {
public:
    explicit FailingInitialization(const std::string& logName) : m_log(logName) {
        s_calls.fail = true;
    }
    FailingInitialization(const FailingInitialization&) = delete;
    FailingInitialization& operator=(const FailingInitialization&) = delete;
    ~FailingInitialization() { s_calls.fail = false; }

    std::string log() const { return m_log.text(); }

private:
    Support::LogCapture m_log;
};

const auto isReport =
    AllOf(StartsWith("Error during Xerces-c initialization: "), HasSubstr("the catalogue"));

TEST_F(XercesInitialization, IsLoggedByAReaderWhereItFails) {
    const FailingInitialization failing("SimpleConfigReader");
    auto reader = openString(answer);
    EXPECT_EQ(42, readInt(reader, "Answer")) << "it goes on";
    EXPECT_THAT(failing.log(), isReport);
    EXPECT_THAT(failing.log(), HasSubstr("SimpleConfigReaderImpl.cpp:63, "));
    EXPECT_THAT(failing.log(), HasSubstr("SimpleConfigReaderImpl::init("));
    EXPECT_EQ(0, s_calls.terminate);
}

TEST_F(XercesInitialization, IsLoggedByANewWriterWhereItFails) {
    const FailingInitialization failing("ConfigWriter");
    {
        ConfigWriter writer("1.0");
        writer.putInt("Answer", 42, "");
        EXPECT_THAT(writer.getAsString(), HasSubstr("<Answer>42</Answer>")) << "it goes on";
    }
    EXPECT_THAT(failing.log(), AllOf(isReport, HasSubstr("ConfigWriterImpl(")));
    EXPECT_EQ(0, s_calls.terminate) << "there is nothing to give back";
}

TEST_F(XercesInitialization, IsLoggedByALoadingWriterWhereItFails) {
    const FailingInitialization failing("ConfigWriter");
    {
        ConfigWriter writer(FileName(), answer);
        EXPECT_THAT(writer.getAsString(), HasSubstr("<Answer>42</Answer>")) << "it goes on";
    }
    EXPECT_THAT(failing.log(), AllOf(isReport, HasSubstr("ConfigWriterImpl(")));
    EXPECT_EQ(0, s_calls.terminate);
}

TEST_F(XercesInitialization, IsMadeAgainAfterAFailure) {
    {
        const FailingInitialization failing("SimpleConfigReader");
        openString(answer);
    }
    EXPECT_EQ(0, s_calls.initialize);
    openString(answer);
    EXPECT_EQ(1, s_calls.initialize);
}

TEST_F(XercesInitialization, IsLockedByTheSchemaService) {
    const Support::TemporaryDirectory directory;
    const FileName file = directory.file("schema.xml");
    Support::writeFile(file, "<schema xmlns=\"http://www.orvant.com/OV_XsdReader\"/>");
    XsdConfigReader reader(file);
    reader.readXSD(false);
    EXPECT_EQ(0, s_calls.unlocked);
    reader.writeXSD(file, false);
    reader.writeXSD(directory.file("suite.xsd"), true);
    EXPECT_EQ(0, s_calls.unlocked);
    EXPECT_EQ(s_calls.initialize, s_calls.terminate);
}

} // namespace
} // namespace Orvant
