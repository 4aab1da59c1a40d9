#include "platform/linux/secrets/keychain_status.h"

#include "base/files.h"

namespace ovrin {

std::optional<std::string> keychainMessage(KeychainStatus status) {
    switch (status) {
        case keychainInvalidData:
            return "密钥不是有效的文本，无法保存。";
        case keychainUnavailable:
            return "系统密钥环不可用。";
        case keychainRefused:
            return "系统密钥环拒绝了请求。";
        case keychainLocked:
            return "系统密钥环已锁定，请解锁后重试。";
        case keychainTimedOut:
            return "系统密钥环没有响应，请稍后重试。";
        case keychainDamagedFile:
            return "密钥文件已损坏，无法读取。";
        default:
            break;
    }
    if (status <= keychainFileErrorBase) return std::nullopt;
    return "无法读写密钥文件：" + files::reasonOf(status - keychainFileErrorBase) + "。";
}

}  // namespace ovrin
