#include "environment/project_configurator_win32.h"

#include <windows.h>
// After <windows.h>.
#include <objbase.h>
#include <oleauto.h>

#include <string>

#include "environment/retry_pauses.h"
#include "environment/runtime_error.h"
#include "environment/windows_calls_win32.h"
#include "strings/reason.h"

namespace txs {
namespace {

// What Basic says of an object that has no such method, and of one that fails without saying why.
constexpr auto kNoSuchMethod = ErrorNumber{438};
constexpr auto kAutomationError = ErrorNumber{440};

// COM on this thread. The window toolkit may have it initialised already, in the same way.
class Apartment {
 public:
  Apartment() : result_(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)) {}
  ~Apartment() {
    if (SUCCEEDED(result_)) CoUninitialize();
  }
  Apartment(const Apartment&) = delete;
  Apartment& operator=(const Apartment&) = delete;

 private:
  HRESULT result_;
};

class Text {
 public:
  explicit Text(std::string_view utf8) : text_(SysAllocString(ToWide(utf8).c_str())) {
    if (text_ == nullptr) throw std::bad_alloc();
  }
  ~Text() { SysFreeString(text_); }
  Text(const Text&) = delete;
  Text& operator=(const Text&) = delete;

  [[nodiscard]] BSTR Get() const { return text_; }

 private:
  BSTR text_;
};

class Value {
 public:
  Value() { VariantInit(&value); }
  ~Value() { VariantClear(&value); }
  Value(const Value&) = delete;
  Value& operator=(const Value&) = delete;

  VARIANT value;
};

// What a failing call tells, owned.
class Failure {
 public:
  ~Failure() {
    SysFreeString(info.bstrSource);
    SysFreeString(info.bstrDescription);
    SysFreeString(info.bstrHelpFile);
  }
  Failure() = default;
  Failure(const Failure&) = delete;
  Failure& operator=(const Failure&) = delete;

  EXCEPINFO info = {};
};

// Calls again what a component that is busy with something else refuses, for a bounded time.
template <typename Call>
HRESULT CallPatiently(const Call& call) {
  RetryPauses pauses;
  for (;;) {
    const HRESULT result = call();
    if (result != RPC_E_CALL_REJECTED && result != RPC_E_SERVERCALL_RETRYLATER) return result;
    const auto pause = pauses.Next();
    if (!pause) return result;
    Sleep(static_cast<DWORD>(pause->count()));
  }
}

[[noreturn]] void ThrowFailure(HRESULT result, Failure& failure, std::string_view project_file) {
  if (result != DISP_E_EXCEPTION) {
    ThrowAbout(kAutomationError, project_file, WordsOfWindowsError(static_cast<DWORD>(result)));
  }
  if (failure.info.pfnDeferredFillIn != nullptr) failure.info.pfnDeferredFillIn(&failure.info);
  const HRESULT code = failure.info.scode;
  // Components in Basic raise the classic numbers in this guise.
  const bool is_basic = HRESULT_FACILITY(code) == FACILITY_CONTROL;
  const auto number = failure.info.wCode != 0 ? ErrorNumber{failure.info.wCode}
                      : is_basic              ? ErrorNumber{HRESULT_CODE(code)}
                                              : kAutomationError;
  const std::string words = failure.info.bstrDescription != nullptr
                                ? ToUtf8(failure.info.bstrDescription)
                                : WordsOfWindowsError(static_cast<DWORD>(code));
  ThrowAbout(number, project_file, words);
}

class ComConfigurator : public ProjectConfigurator {
 public:
  ComConfigurator(std::string_view class_name, const FileReader& files) : files_(files) {
    const std::wstring name = ToWide(class_name);
    CLSID id = {};
    const HRESULT known = name.starts_with(L'{') ? CLSIDFromString(name.c_str(), &id)
                                                 : CLSIDFromProgID(name.c_str(), &id);
    if (FAILED(known)) return;
    void* object = nullptr;
    if (SUCCEEDED(CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER,
                                   IID_IDispatch, &object))) {
      object_ = static_cast<IDispatch*>(object);
    }
  }
  ~ComConfigurator() override {
    if (object_ != nullptr) object_->Release();
  }
  ComConfigurator(const ComConfigurator&) = delete;
  ComConfigurator& operator=(const ComConfigurator&) = delete;

  [[nodiscard]] bool IsCreated() const { return object_ != nullptr; }

  std::string OpenProject(std::string_view project_file) override {
    if (!files_.FileExists(project_file)) return {};
    wchar_t method[] = L"OpenProject";
    wchar_t* methods[] = {method};
    DISPID id = 0;
    Failure failure;
    const HRESULT named = CallPatiently(
        [&] { return object_->GetIDsOfNames(IID_NULL, methods, 1, LOCALE_USER_DEFAULT, &id); });
    if (named == DISP_E_UNKNOWNNAME) {
      ThrowAbout(kNoSuchMethod, project_file, Words(Reason::kNoOpenProject));
    }
    if (FAILED(named)) ThrowFailure(named, failure, project_file);
    const Text path(project_file);
    VARIANT argument = {};
    argument.vt = VT_BSTR;
    argument.bstrVal = path.Get();
    DISPPARAMS arguments = {&argument, nullptr, 1, 0};
    Value answer;
    const HRESULT called = CallPatiently([&] {
      return object_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT,
                             DISPATCH_METHOD | DISPATCH_PROPERTYGET, &arguments, &answer.value,
                             &failure.info, nullptr);
    });
    if (FAILED(called)) ThrowFailure(called, failure, project_file);
    const HRESULT converted = VariantChangeTypeEx(&answer.value, &answer.value, LOCALE_INVARIANT,
                                                  VARIANT_NOUSEROVERRIDE, VT_BSTR);
    if (FAILED(converted)) {
      ThrowAbout(ErrorNumber::kTypeMismatch, project_file, Words(Reason::kAnswerIsNoText));
    }
    const BSTR text = answer.value.bstrVal;
    return text == nullptr ? std::string() : ToUtf8({text, SysStringLen(text)});
  }

 private:
  Apartment apartment_;
  const FileReader& files_;
  IDispatch* object_ = nullptr;
};

}  // namespace

std::unique_ptr<ProjectConfigurator> MakeComConfigurator(std::string_view class_name,
                                                         const FileReader& files) {
  auto configurator = std::make_unique<ComConfigurator>(class_name, files);
  if (!configurator->IsCreated()) return nullptr;
  return configurator;
}

}  // namespace txs
