#include "platform/linux/network/transport_error.h"

#include <cerrno>

namespace ovrin {

namespace {

// Verification results of OpenSSL, which curl passes on as plain numbers.
enum VerifyResult : long {
    verified = 0,
    notAsked = 1,  // curl sees to the name first, and to the rest only when it fits
    issuerNotFound = 2,
    notYetValid = 9,
    expired = 10,
    selfSigned = 18,
    selfSignedInChain = 19,
    issuerUnknown = 20,
    leafUnverifiable = 21,
    revoked = 23,
};

long longInfo(CURL* handle, CURLINFO info) {
    long value = 0;
    curl_easy_getinfo(handle, info, &value);
    return value;
}

std::string describeConnectFailure(CURL* handle, const std::string& host) {
    switch (longInfo(handle, CURLINFO_OS_ERRNO)) {
        case ECONNREFUSED:
            return "服务器 " + host + " 拒绝连接。";
        case ENETUNREACH:
        case EHOSTUNREACH:
        case ENETDOWN:
            return "无法到达服务器 " + host + "，请检查网络连接。";
        case ETIMEDOUT:
            return "连接服务器 " + host + " 超时。";
        default:
            return "无法连接到服务器 " + host + "。";
    }
}

std::string describeCertificate(CURL* handle, const std::string& host) {
    switch (longInfo(handle, CURLINFO_SSL_VERIFYRESULT)) {
        case verified:
        case notAsked:
            return "证书与主机名不符：服务器出示的证书不属于 " + host + "。";
        case notYetValid:
            return "服务器 " + host + " 的证书尚未生效，请检查系统时间。";
        case expired:
            return "服务器 " + host + " 的证书已过期。";
        case selfSigned:
        case selfSignedInChain:
            return "服务器 " + host + " 的证书不受信任：证书是自签名的。";
        case issuerNotFound:
        case issuerUnknown:
        case leafUnverifiable:
            return "服务器 " + host + " 的证书不受信任：签发机构未知。";
        case revoked:
            return "服务器 " + host + " 的证书已被吊销。";
        default:
            return "服务器 " + host + " 的证书无法验证。";
    }
}

std::string describeInterruption(CURL* handle) {
    const long proxyStatus = longInfo(handle, CURLINFO_HTTP_CONNECTCODE);
    if (proxyStatus >= 300) return "代理服务器拒绝了连接（HTTP " + std::to_string(proxyStatus) + "）。";
    return "连接被中断。";
}

std::string describe(CURLcode code, CURL* handle, const std::string& host) {
    switch (code) {
        case CURLE_COULDNT_RESOLVE_HOST:
            return "找不到服务器 " + host + "，请检查地址和网络连接。";
        case CURLE_COULDNT_RESOLVE_PROXY:
            return "找不到代理服务器，请检查代理设置。";
        case CURLE_COULDNT_CONNECT:
            return describeConnectFailure(handle, host);
        case CURLE_PROXY:
            return "代理服务器无法建立连接。";
        case CURLE_PEER_FAILED_VERIFICATION:
            return describeCertificate(handle, host);
        case CURLE_SSL_CACERT_BADFILE:
            return "无法读取受信任的根证书。";
        case CURLE_SSL_CONNECT_ERROR:
            return "无法与服务器 " + host + " 建立安全连接。";
        case CURLE_OPERATION_TIMEDOUT:
            return timeoutError().errorDescription();
        case CURLE_GOT_NOTHING:
            return "服务器没有响应就关闭了连接。";
        case CURLE_PARTIAL_FILE:
            return "响应不完整：服务器提前关闭了连接。";
        case CURLE_SEND_ERROR:
        case CURLE_RECV_ERROR:
        case CURLE_HTTP2:
        case CURLE_HTTP2_STREAM:
            return describeInterruption(handle);
        case CURLE_BAD_CONTENT_ENCODING:
        case CURLE_WRITE_ERROR:  // curl's own decoders, at what follows the end of the compressed data
            return "响应的压缩数据无法解码。";
        case CURLE_UNSUPPORTED_PROTOCOL:
        case CURLE_WEIRD_SERVER_REPLY:
            return "服务器的回答不是有效的 HTTP 响应。";
        case CURLE_URL_MALFORMAT:
            return invalidURLError().errorDescription();
        case CURLE_OUT_OF_MEMORY:  // curl refuses a single header that is too long
            return headersTooLongError().errorDescription();
        default:
            return "传输出错（代码 " + std::to_string(code) + "），请稍后重试。";
    }
}

}  // namespace

Error transportError(CURLcode code, CURL* handle, const std::string& host) {
    return Error(describe(code, handle, host));
}

Error invalidURLError() {
    return Error("请求的地址无效。");
}

Error invalidMethodError() {
    return Error("请求的方法不符合 HTTP。");
}

// A whole line may have been pasted where the name belongs, with a secret behind the colon.
Error invalidHeaderNameError(const std::string& name) {
    const std::string shown = name.substr(0, name.find_first_of(":\r\n\t"));
    return Error(shown.empty() ? "Header 的名称不符合 HTTP。" : "Header“" + shown + "”的名称不符合 HTTP。");
}

Error invalidHeaderValueError(const std::string& name) {
    return Error("Header“" + name + "”的值不符合 HTTP。");
}

Error timeoutError() {
    return Error("请求超时：服务器长时间没有响应。");
}

Error headersTooLongError() {
    return Error("响应的标头过长。");
}

Error tooManyRedirectsError() {
    return Error("重定向次数过多。");
}

Error insecureRedirectError() {
    return Error("服务器要求转到不安全的地址（不是 HTTPS），已拒绝。");
}

}  // namespace ovrin
