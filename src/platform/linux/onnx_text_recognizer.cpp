#include "platform/linux/onnx_text_recognizer.h"
#include <opencv2/imgproc.hpp>
#include "platform/linux/recognition/text_detector.h"
#include "platform/linux/recognition/line_recognizer.h"
#include "platform/linux/recognition/parallel.h"
namespace ovrin {
RecognitionFiles RecognitionFiles::ofThisProgram() {
    const auto folder = std::filesystem::read_symlink("/proc/self/exe").parent_path();
    const auto built = folder / "share/ovrin/models";
    const char* prefix = std::getenv("TESSDATA_PREFIX");
    return {.modelFolder = std::filesystem::exists(built) ? built : folder.parent_path() / "share/ovrin/models",
            .tesseractFolder = prefix != nullptr ? prefix : "/usr/share/tesseract-ocr/5/tessdata"};
}

class OnnxTextRecognizer::Resources { public: 
 explicit Resources(const RecognitionFiles&f):detector(f.modelFolder/"ch_PP-OCRv4_det_infer.onnx"),reader(f.modelFolder/"ch_PP-OCRv4_rec_infer.onnx",f.modelFolder/"ppocr_keys_v1.txt"){}
 TextDetector detector; LineRecognizer reader; };
OnnxTextRecognizer::OnnxTextRecognizer(RecognitionFiles files):resources_(std::make_unique<Resources>(files)){}
OnnxTextRecognizer::~OnnxTextRecognizer()=default;
void OnnxTextRecognizer::prepare(){} void OnnxTextRecognizer::releaseResources(){}
std::vector<TextObservation> OnnxTextRecognizer::perform(const TextRecognitionRequest&, const Image& image, std::stop_token stop){
 const cv::Mat picture(image.height(),image.width(),CV_8UC4,const_cast<std::uint8_t*>(image.data()));
 auto regions=resources_->detector.detect(picture,stop);
 std::sort(regions.begin(),regions.end(),[](auto&a,auto&b){return a.box.y<b.box.y;});
 std::vector<TextObservation> out(regions.size());
 parallelFor(regions.size(),recognitionThreads(),[&](std::size_t i){ cv::Mat bgr; cv::cvtColor(picture(regions[i].box),bgr,cv::COLOR_BGRA2BGR); auto r=resources_->reader.read(bgr,stop);
  auto b=regions[i].box; out[i].candidates.push_back({textOf(r),(float)meanConfidence(r)}); out[i].boundingBox={b.x/(double)image.width(),1-(b.y+b.height)/(double)image.height(),b.width/(double)image.width(),b.height/(double)image.height()}; });
 return out; }
}
