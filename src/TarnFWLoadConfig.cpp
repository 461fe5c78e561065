/// Loading and evaluating configuration text. A load parses, makes the channel that the text names,
/// if any, and hands back the commands; nothing is sent before the evaluation.

#define TARNFW_SOURCE "TarnFWLibMain.cpp"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>

#include "TarnFWCmdConfig.h"
#include "TarnFWCmdList.h"
#include "TarnFWLibCall.h"
#include "TarnFWLog.h"
#include "TarnFWScanner.h"
#include "tarnfw.h"
#include "tarnfw_parser.h"

namespace TarnFirewall {

namespace {

/// What an error line names as the file of a text from the command line.
constexpr char kCommandLine[] = "<cmd>";

CTarnFWCmdList* fromConfigFile(fwconfigfile_* handle) {
  return reinterpret_cast<CTarnFWCmdList*>(handle);
}

/// One load: scanner, record and results, all of which end with it. Its debug lines name the public
/// function that loads.
class Load {
 public:
  ~Load() {
    if (buffer_ != nullptr) yy_delete_buffer(buffer_, scanner_);
    if (scanner_ != nullptr) yylex_destroy(scanner_);
    deleteTraced(list_);
    deleteTraced(config_);
  }
  explicit Load(const char* function) : function_(function) {}
  Load(const Load&) = delete;
  Load& operator=(const Load&) = delete;

  FWStatus_t fromString(const char* text, fwlibhandle_** channel, fwconfigfile_** handle) {
    // The scanner counts its buffer in an int.
    if (std::strlen(text) > INT_MAX - 2 || !start()) return FW_STATUS_OUT_OF_MEMORY;
    try {
      buffer_ = yy_scan_string(text, scanner_);
    } catch (const std::bad_alloc&) {
      return FW_STATUS_OUT_OF_MEMORY;
    }
    yyset_lineno(1, scanner_);
    if (!parse(kCommandLine)) {
      TARNFW_TRACE_IN(function_, LOG_DEBUG, FW_COMPONENT_API, 0,
                      "failed to parse config string.\n");
      return status_;
    }
    if (config_ != nullptr) {
      TARNFW_TRACE_IN(function_, LOG_DEBUG, FW_COMPONENT_API, 0, "loading new IO channel.\n");
      if (const FWStatus_t status = makeChannel(channel)) {
        TARNFW_TRACE_IN(function_, LOG_DEBUG, FW_COMPONENT_API, 0,
                        "failed to load new IO channel: %d.\n", static_cast<int>(status));
        return status;
      }
    }
    TARNFW_TRACE_IN(function_, LOG_DEBUG, FW_COMPONENT_API, 0, "obtained config handle.\n");
    return handOver(handle);
  }

  FWStatus_t fromStream(std::FILE* file, const char* fileName, fwlibhandle_** channel,
                        fwconfigfile_** handle) {
    if (!start()) return FW_STATUS_OUT_OF_MEMORY;
    yyset_in(file, scanner_);
    if (!parse(fileName)) {
      TARNFW_TRACE_IN(function_, LOG_DEBUG, FW_COMPONENT_API, 0, "failed to parse config file.\n");
      return status_;
    }
    if (config_ != nullptr) {
      TARNFW_TRACE_IN(function_, LOG_DEBUG, FW_COMPONENT_API, 0,
                      "loading new IO channel from config file.\n");
      if (const FWStatus_t status = makeChannel(channel)) {
        TARNFW_TRACE_IN(function_, LOG_DEBUG, FW_COMPONENT_API, 0,
                        "failed to load new IO channel from config file: %d.\n",
                        static_cast<int>(status));
        return status;
      }
    }
    TARNFW_TRACE_IN(function_, LOG_DEBUG, FW_COMPONENT_API, 0, "obtained config file handle.\n");
    return handOver(handle);
  }

 private:
  bool start() { return yylex_init_extra(&extra_, &scanner_) == 0; }

  bool parse(const char* name) { return yyparse(&status_, scanner_, name, &list_, &config_) == 0; }

  /// The caller's former channel stays open: it is the caller's.
  FWStatus_t makeChannel(fwlibhandle_** channel) {
    fwlibhandle_* made = nullptr;
    const FWStatus_t status = config_->eval(&made);
    deleteTraced(std::exchange(config_, nullptr));
    if (status == FW_STATUS_OK) *channel = made;
    return status;
  }

  FWStatus_t handOver(fwconfigfile_** handle) {
    *handle = reinterpret_cast<fwconfigfile_*>(std::exchange(list_, nullptr));
    return FW_STATUS_OK;
  }

  void deleteTraced(ITarnFWObject* object) const {
    if (object == nullptr) return;
    TARNFW_TRACE_IN(function_, LOG_DEBUG, FW_COMPONENT_API, 0, "delete cmd list/config\n");
    delete object;
  }

  const char* function_;
  void* scanner_ = nullptr;
  yy_buffer_state* buffer_ = nullptr;
  fw_lex_extra_ extra_;
  FWStatus_t status_ = FW_STATUS_OK;
  CTarnFWCmdList* list_ = nullptr;
  CTarnFWCmdConfig* config_ = nullptr;
};

}  // namespace

}  // namespace TarnFirewall

using namespace TarnFirewall;

extern "C" {

FWStatus_t FW_LoadConfigString(const char* text, fwlibhandle_** channel, fwconfigfile_** handle) {
  const char* const function = __func__;
  return callFrame(function, [&]() -> FWStatus_t {
    if (text == nullptr || channel == nullptr || handle == nullptr) {
      return FW_STATUS_INVALID_ARGUMENT;
    }
    return Load(function).fromString(text, channel, handle);
  });
}

FWStatus_t FW_LoadConfigFile2(std::FILE* file, const char* fileName, fwlibhandle_** channel,
                              fwconfigfile_** handle) {
  const char* const function = __func__;
  return callFrame(function, [&]() -> FWStatus_t {
    if (file == nullptr || fileName == nullptr || channel == nullptr || handle == nullptr) {
      return FW_STATUS_INVALID_ARGUMENT;
    }
    *handle = nullptr;
    return Load(function).fromStream(file, fileName, channel, handle);
  });
}

FWStatus_t FW_LoadConfigFile(const char* path, fwlibhandle_** channel, fwconfigfile_** handle) {
  const char* const function = __func__;
  return callFrame(function, [&]() -> FWStatus_t {
    if (path == nullptr || channel == nullptr || handle == nullptr) {
      return FW_STATUS_INVALID_ARGUMENT;
    }
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path, "re"),
                                                               &std::fclose);
    if (file == nullptr) {
      TARNFW_TRACE_IN(function, LOG_DEBUG, FW_COMPONENT_API, 0, "failed to open file %s - %d\n",
                      path, errno);
      return FW_STATUS_CANNOT_LOAD_FILE;
    }
    TARNFW_TRACE_IN(function, LOG_DEBUG, FW_COMPONENT_API, 0, "opened config file %s\n", path);
    return FW_LoadConfigFile2(file.get(), path, channel, handle);
  });
}

FWStatus_t FW_EvaluateConfigFile(fwlibhandle_* handle, fwconfigfile_* config, dvs_port_* port,
                                 void* context) {
  return callFrame(__func__, [&]() -> FWStatus_t {
    if (handle == nullptr || config == nullptr) return FW_STATUS_INVALID_ARGUMENT;
    return fromConfigFile(config)->eval(handle, port, context);
  });
}

FWStatus_t FW_FreeConfigFile(fwconfigfile_* config) {
  const char* const function = __func__;
  return callFrame(function, [&]() -> FWStatus_t {
    if (config == nullptr) return FW_STATUS_INVALID_ARGUMENT;
    TARNFW_TRACE_IN(function, LOG_DEBUG, FW_COMPONENT_API, 0, "deleting config file handle.\n");
    delete fromConfigFile(config);
    return FW_STATUS_OK;
  });
}

}  // extern "C"
