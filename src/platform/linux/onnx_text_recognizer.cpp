#include "platform/linux/onnx_text_recognizer.h"

#include <cstdlib>
#include <opencv2/core.hpp>

#include "platform/linux/recognition/glyph_places.h"
#include "platform/linux/recognition/line_reader.h"
#include "platform/linux/recognition/parallel.h"
#include "platform/linux/recognition/reading_order.h"
#include "platform/linux/recognition/text_detector.h"
#include "platform/linux/recognition/word_spaces.h"
namespace ovrin {
RecognitionFiles RecognitionFiles::ofThisProgram() {
    const auto folder = std::filesystem::read_symlink("/proc/self/exe").parent_path();
    const auto built = folder / "share/ovrin/models";
    const char* prefix = std::getenv("TESSDATA_PREFIX");
    return {.modelFolder = std::filesystem::exists(built) ? built : folder.parent_path() / "share/ovrin/models",
            .tesseractFolder = prefix != nullptr ? prefix : "/usr/share/tesseract-ocr/5/tessdata"};
}


class OnnxTextRecognizer::Resources { public: 
 explicit Resources(const RecognitionFiles&f):detector(f.modelFolder/"ch_PP-OCRv4_det_infer.onnx"),reader(f.modelFolder/"ch_PP-OCRv4_rec_infer.onnx",f.modelFolder/"ppocr_keys_v1.txt"),tesseract(f.tesseractFolder){}
 TextDetector detector; LineRecognizer reader; TesseractReader tesseract; };
OnnxTextRecognizer::OnnxTextRecognizer(RecognitionFiles files):resources_(std::make_unique<Resources>(files)){}
OnnxTextRecognizer::~OnnxTextRecognizer()=default;
void OnnxTextRecognizer::prepare(){} void OnnxTextRecognizer::releaseResources(){}
std::vector<TextObservation> OnnxTextRecognizer::perform(const TextRecognitionRequest&, const Image& image, std::stop_token stop){
 const cv::Mat picture(image.height(),image.width(),CV_8UC4,const_cast<std::uint8_t*>(image.data()));
 auto regions=resources_->detector.detect(picture,stop);
 std::vector<LinePiece> pieces(regions.size());
 parallelFor(regions.size(),recognitionThreads(),[&](std::size_t i){ pieces[i]=cutLinePiece(picture,regions[i].box);});
 LineReader lines(resources_->reader,resources_->tesseract,{"chi_tra","jpn","kor"});
 auto readings=lines.read(pieces,stop);
 std::vector<cv::Rect> boxes;  std::vector<std::size_t> from;
 for(std::size_t i=0;i<pieces.size();i++){ if(readings[i].empty()||meanConfidence(readings[i])<0.5) continue; placeOnInk(readings[i],pieces[i]); placeSpaces(readings[i],pieces[i]); auto b=pieces[i].box; boxes.push_back(b); from.push_back(i);}
 std::vector<TextObservation> out;
 for(const auto& row:readingOrder(boxes)){ std::string text; double conf=0,n=0; cv::Rect box; for(auto k:row){ auto&r=readings[from[k]]; if(!text.empty()) text+=' '; text+=textOf(r); conf+=meanConfidence(r)*(double)r.size(); n+=(double)r.size(); box=box.empty()?boxes[k]:box|boxes[k]; }
  out.push_back({{{text,(float)(conf/n)}},{box.x/(double)image.width(),1-(box.y+box.height)/(double)image.height(),box.width/(double)image.width(),box.height/(double)image.height()}}); }
 return out; }
}
