// The studio's component through COM: a class of our own stands in for it.

#include "environment/project_configurator_win32.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <windows.h>
// After <windows.h>.
#include <objbase.h>
#include <oleauto.h>

#include <functional>
#include <string>

#include "environment/runtime_error.h"
#include "environment/windows_calls_win32.h"
#include "fakes/memory_file_system.h"

namespace txs {
namespace {

using testing::HasSubstr;

constexpr char kClassName[] = "{7C1E3F52-9A4B-4D77-8E21-3B0A5D6F9C10}";
constexpr char kProject[] = "C:\\Demo\\Grün.txs";

// What the component does when OpenProject is called.
using Behaviour = std::function<HRESULT(const std::wstring& path, VARIANT* answer, EXCEPINFO*)>;

// A component whose only method is OpenProject, and its factory. Lives as long as the test.
class Component : public IDispatch, public IClassFactory {
 public:
  std::wstring method = L"OpenProject";
  Behaviour behaviour;
  HRESULT creation = S_OK;
  HRESULT naming = S_OK;
  int alive = 0;

  // --- IUnknown, for both.
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
    if (id == IID_IUnknown || id == IID_IDispatch) {
      *object = static_cast<IDispatch*>(this);
    } else if (id == IID_IClassFactory) {
      *object = static_cast<IClassFactory*>(this);
    } else {
      *object = nullptr;
      return E_NOINTERFACE;
    }
    ++alive;
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(++alive); }
  ULONG STDMETHODCALLTYPE Release() override { return static_cast<ULONG>(--alive); }

  // --- IClassFactory
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID id, void** object) override {
    if (FAILED(creation)) return creation;
    return QueryInterface(id, object);
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

  // --- IDispatch
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID,
                                          DISPID* id) override {
    if (FAILED(naming)) return naming;
    if (method != names[0]) return DISP_E_UNKNOWNNAME;
    *id = 7;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* arguments,
                                   VARIANT* answer, EXCEPINFO* failure, UINT*) override {
    if (id != 7 || (flags & DISPATCH_METHOD) == 0) return DISP_E_MEMBERNOTFOUND;
    if (arguments->cArgs != 1) return DISP_E_BADPARAMCOUNT;
    if (arguments->rgvarg[0].vt != VT_BSTR) return DISP_E_TYPEMISMATCH;
    return behaviour(arguments->rgvarg[0].bstrVal, answer, failure);
  }
};

class ComConfiguratorTest : public testing::Test {
 protected:
  void SetUp() override {
    files.AddFile(kProject, "");
    ASSERT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)));
    CLSID id = {};
    ASSERT_EQ(CLSIDFromString(ToWide(kClassName).c_str(), &id), S_OK);
    ASSERT_EQ(CoRegisterClassObject(id, static_cast<IClassFactory*>(&component),
                                    CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &registration),
              S_OK);
  }
  void TearDown() override {
    CoRevokeClassObject(registration);
    CoUninitialize();
    EXPECT_EQ(component.alive, 0);
  }
  // Number and words of the error that opening the project ends with.
  std::pair<ErrorNumber, std::string> Failure() {
    try {
      static_cast<void>(MakeComConfigurator(kClassName, files)->OpenProject(kProject));
    } catch (const RuntimeError& error) {
      return {error.Number(), error.Description()};
    }
    return {};
  }
  void AnswerWith(const std::function<void(VARIANT*)>& fill) {
    component.behaviour = [fill](const std::wstring&, VARIANT* answer, EXCEPINFO*) {
      fill(answer);
      return S_OK;
    };
  }

  MemoryFileSystem files;
  Component component;
  DWORD registration = 0;
};

TEST_F(ComConfiguratorTest, TheComponentGetsThePathAndItsAnswerIsKept) {
  std::wstring seen;
  component.behaviour = [&seen](const std::wstring& path, VARIANT* answer, EXCEPINFO*) {
    seen = path;
    answer->vt = VT_BSTR;
    answer->bstrVal = SysAllocString(L"4.0 \u00FC");
    return S_OK;
  };

  const auto configurator = MakeComConfigurator(kClassName, files);

  ASSERT_NE(configurator, nullptr);
  EXPECT_EQ(configurator->OpenProject(kProject), "4.0 ü");
  EXPECT_EQ(seen, L"C:\\Demo\\Gr\u00FCn.txs");
}

TEST_F(ComConfiguratorTest, ANumberOrNothingIsATextToo) {
  AnswerWith([](VARIANT* answer) {
    answer->vt = VT_R8;
    answer->dblVal = 4.5;
  });
  EXPECT_EQ(MakeComConfigurator(kClassName, files)->OpenProject(kProject), "4.5");

  AnswerWith([](VARIANT* answer) { answer->vt = VT_EMPTY; });
  EXPECT_EQ(MakeComConfigurator(kClassName, files)->OpenProject(kProject), "");
}

TEST_F(ComConfiguratorTest, AnAnswerThatIsNoTextIsAnError) {
  AnswerWith([this](VARIANT* answer) {
    answer->vt = VT_DISPATCH;
    answer->pdispVal = &component;
    component.AddRef();
  });

  EXPECT_NE(Failure().first, ErrorNumber{});
}

TEST_F(ComConfiguratorTest, AMissingProjectFileIsNotOpened) {
  component.behaviour = [](const std::wstring&, VARIANT*, EXCEPINFO*) {
    ADD_FAILURE();
    return S_OK;
  };

  EXPECT_EQ(MakeComConfigurator(kClassName, files)->OpenProject("C:\\Demo\\none.txs"), "");
}

TEST_F(ComConfiguratorTest, AnErrorOfTheComponentKeepsItsNumberAndWords) {
  component.behaviour = [](const std::wstring&, VARIANT*, EXCEPINFO* failure) {
    failure->bstrDescription = SysAllocString(L"Projekt besch\u00E4digt");
    failure->scode = MAKE_HRESULT(SEVERITY_ERROR, FACILITY_CONTROL, 75);
    return DISP_E_EXCEPTION;
  };

  const auto [number, words] = Failure();

  EXPECT_EQ(number, ErrorNumber::kPathFileAccess);
  EXPECT_THAT(words, HasSubstr("Projekt beschädigt"));
  EXPECT_THAT(words, HasSubstr(kProject));
}

TEST_F(ComConfiguratorTest, AComponentThatFailsWithoutAWordIsAnAutomationError) {
  component.behaviour = [](const std::wstring&, VARIANT*, EXCEPINFO*) { return E_FAIL; };

  EXPECT_EQ(Failure().first, ErrorNumber{440});
}

TEST_F(ComConfiguratorTest, AComponentWithoutTheMethodIsNamed) {
  component.method = L"Close";

  EXPECT_EQ(Failure().first, ErrorNumber{438});
}

TEST_F(ComConfiguratorTest, AComponentThatIsGoneIsNotSaidToLackTheMethod) {
  component.naming = RPC_E_DISCONNECTED;

  const auto [number, words] = Failure();

  EXPECT_EQ(number, ErrorNumber{440});
  EXPECT_THAT(words, HasSubstr(WordsOfWindowsError(static_cast<DWORD>(RPC_E_DISCONNECTED))));
}

TEST_F(ComConfiguratorTest, AComponentThatIsBusyIsAskedAgainForABoundedTime) {
  int refusals = 2;
  int calls = 0;
  component.behaviour = [&](const std::wstring&, VARIANT* answer, EXCEPINFO*) -> HRESULT {
    if (++calls <= refusals) return calls % 2 ? RPC_E_CALL_REJECTED : RPC_E_SERVERCALL_RETRYLATER;
    answer->vt = VT_BSTR;
    answer->bstrVal = SysAllocString(L"4.0");
    return S_OK;
  };

  EXPECT_EQ(MakeComConfigurator(kClassName, files)->OpenProject(kProject), "4.0");
  EXPECT_EQ(calls, 3);
  refusals = 1'000'000;
  EXPECT_EQ(Failure().first, ErrorNumber{440});
}

TEST_F(ComConfiguratorTest, WhatCannotBeCreatedIsNull) {
  component.creation = CLASS_E_CLASSNOTAVAILABLE;

  EXPECT_EQ(MakeComConfigurator(kClassName, files), nullptr);
  EXPECT_EQ(MakeComConfigurator("{00000000-1111-2222-3333-444444444444}", files), nullptr);
  EXPECT_EQ(MakeComConfigurator("No.Such.Class", files), nullptr);
  EXPECT_EQ(MakeComConfigurator("{no class id", files), nullptr);
}

}  // namespace
}  // namespace txs
