#pragma once
// The product key that roots the configuration store. Registry opens its
// keys below it, so finding it uses no Registry: the product settings,
// which do use Registry, sit above both.
#include <string>

namespace braxcfg::platform {

// "SOFTWARE\<maker>\<product>\CurrentVersion", computed once per store and
// cached. Finding the words may write "MfgName"/"KeyName" (see the README),
// never to a store opened read-only.
std::string productKey();

}  // namespace braxcfg::platform
