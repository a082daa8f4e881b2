// An auto-configuration module that only says which file it was built as.
extern "C" __attribute__((visibility("default"))) int AUTOCF_moduleId() { return FAKE_MODULE_ID; }
