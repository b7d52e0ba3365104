#pragma once

/// The pieces of the fragment shader's text, to the byte. ShaderText.cpp puts them together.
namespace ShaderSnippets {

constexpr char kHeader[] =
    "#ifdef GL_ES \n"
    "precision highp float; \n"
    "#endif \n"
    "#define pi 3.141592654\n"
    "#define halfpi 1.570796327\n"
    "#define twopi 6.283185308\n"
    "#define fourpi 12.5663706\n"
    "#define BlendHardLight(src, dest) (src < 0.5 ? (2.0 * src * dest) : (1.0 - 2.0 * (1.0 -"
    " src) * (1.0 - dest)))\n"
    "#define jjj (vec2(-1.))\n"
    "#define toTexCoords(a) (vec2(a.x / twopi, a.y / pi))\n";

// toSpherical gives radius, longitude in [0, 2 pi) and co-latitude.
constexpr char kUniforms[] =
    "uniform sampler2D uSampler;uniform mat4 uMatViewInverse;uniform mat4 uColorMatrix;"
    "uniform mat4 uMatViewInverseLeft;uniform mat4 uMatViewInverseRight;"
    "uniform float uBrightness;uniform float uContrast;uniform float uHue;"
    "uniform float uSaturation;uniform float uVibrance;uniform float uFov;"
    "uniform float uTime;uniform float uVignettingRadius;uniform float uVignettingAmount;"
    "uniform vec2 uViewportSize;uniform vec2 uViewportSizeMin;"
    "uniform vec2 uViewportSizeRatio;uniform float uViewportWidth;"
    "uniform vec2 uLensCenterLeft;uniform vec2 uLensCenterRight;"
    "uniform vec2 uScreenCenterLeft;uniform vec2 uScreenCenterRight;uniform vec2 uScale;"
    "uniform vec2 uScaleIn;uniform vec4 uHmdWarpParam;uniform float uScaleCorrector;"
    "uniform float uCameraYaw; uniform float uCameraPitch;vec3 toSpherical(in vec3 a){"
    "float b,c,d;b=length(a);c=-atan(a.x,a.z);c+=(1.0-step(0.0,c))*twopi;d=acos(a.y/b);"
    "return vec3(b,c,d);}\n"
    "vec3 toCartesian(in vec3 rtp){float r=rtp.x,theta=rtp.y,phi=rtp.z;"
    "return vec3(r*sin(theta)*sin(phi),r*cos(theta)*sin(phi),r*cos(phi));}\n";

constexpr char kLimitUniforms[] =
    "uniform float uYawMin;uniform float uYawMax;uniform float uPitchMin;"
    "uniform float uPitchMax;\n";

constexpr char kHeadsetViewHelpers[] =
    "vec2 fragCoord() {"
    " return vec2(gl_FragCoord.x-(step(uViewportWidth,gl_FragCoord.x)*uViewportWidth),"
    "gl_FragCoord.y);"
    " }\n"
    "mat4 getMatViewInverse() {"
    " return (step(uViewportWidth,gl_FragCoord.x)*uMatViewInverseRight) +"
    " (step(-uViewportWidth,-gl_FragCoord.x)*uMatViewInverseLeft);"
    " }\n"
    "vec2 getLensCenter() {"
    " return (step(uViewportWidth,gl_FragCoord.x)*uLensCenterRight) + (step(-uViewportWidth,"
    "-gl_FragCoord.x)*uLensCenterLeft);"
    " }\n"
    "vec2 getScreenCenter() {"
    " return (step(uViewportWidth,gl_FragCoord.x)*uScreenCenterRight) + (step(-uViewportWidth,"
    "-gl_FragCoord.x)*uScreenCenterLeft);"
    " }\n"
    "vec2 hmdWarp(vec2 in01) { vec2 theta = (in01 - getLensCenter()) * uScaleIn;"
    "float rSq = theta.x * theta.x + theta.y * theta.y;"
    "vec2 rvector= theta * (uHmdWarpParam.x + uHmdWarpParam.y * rSq + uHmdWarpParam.z * rSq *"
    " rSq + uHmdWarpParam.w * rSq * rSq * rSq);"
    "return getLensCenter() + uScale * rvector;}\n"
    "vec2 getDistoCoord() {"
    " return hmdWarp(vec2(gl_FragCoord.x/ (uViewportSize.x*2.0), gl_FragCoord.y /"
    " uViewportSize.y));"
    " }\n";

constexpr char kWindowViewHelpers[] =
    "vec2 fragCoord() { return vec2(gl_FragCoord.x,gl_FragCoord.y); }\n"
    "mat4 getMatViewInverse() { return uMatViewInverse; }\n";

constexpr char kFlat[] =
    "vec2 p(in float a, in vec2 fragCoord){"
    "return vec2(fragCoord.x/uViewportSize.x,1.0-(fragCoord.y/uViewportSize.y));}";

constexpr char kRectilinearRay[] =
    "vec2 p(in float a, in vec2 fragCoord){float b=tan(a/2.0);"
    "vec3 screenPt = vec3(vec2(b * (2.0 * fragCoord / uViewportSizeMin - uViewportSizeRatio)),"
    " -1.0);";

constexpr char kRectilinearHeadsetScale[] = "screenPt.y /= uScaleCorrector;";

constexpr char kRectilinearLookup[] = "vec3 pt = vec3(getMatViewInverse() * vec4(screenPt,1.0));"
                                      "return toTexCoords(toSpherical(pt).yz);}";

// Inverse stereographic projection from a point .25 beyond the unit sphere.
constexpr char kLittlePlanet[] =
    "vec2 p(in float a, in vec2 fragCoord){float b,d,e,f;b=.25;"
    "vec2 c=a*(fragCoord*2./uViewportSizeMin-uViewportSizeRatio);d=dot(c,c);"
    "float bb=(b+1.)*(b+1.);e=d+bb;f=2.*(b+1.)/e;vec3 g,h;g=vec3(vec2(f*c),(d-bb)/(d+bb));"
    "vec3 pt=vec3(getMatViewInverse()*vec4(g,1.0));return toTexCoords(toSpherical(pt).yz);}";

constexpr char kMirrorBall[] =
    "vec2 p(in float a, in vec2 fragCoord){"
    "vec2 b=-a*(fragCoord*2./uViewportSizeMin-uViewportSizeRatio);vec3 c,e,f,g,h;"
    "c=vec3(b,sqrt(1.-dot(b,b)));e=vec3(getMatViewInverse()*vec4(c,1.0));"
    "f=vec3(getMatViewInverse()*vec4(0,0,1,1));g=normalize(f-2.*dot(e,f)*e);h=toSpherical(g);"
    "h.y=twopi-h.y;h.z=pi-h.z;return 1.0-toTexCoords(h.yz);} ";

// Equidistant: a ray beyond a total angle of 2 pi is sent outside the source.
constexpr char kFisheye[] =
    "vec2 p(in float a, in vec2 fragCoord){"
    " vec2 screenPt = 2.0 * fragCoord / uViewportSizeMin - uViewportSizeRatio;"
    "float r = sqrt(dot(screenPt, screenPt));if (r * a > twopi) { return vec2(-1.); }"
    "float agl = r * a / 2.0;vec3 worldPt = vec3(screenPt * sin(agl) / r, -cos(agl));"
    "return toTexCoords(toSpherical(vec3(getMatViewInverse() * vec4(worldPt,1.0))).yz);}";

constexpr char kMainStart[] =
    "void main(){vec2 pixel = fragCoord() / uViewportSize;vec2 a;float qb=.017453293*uFov;"
    "highp vec3 color,frag;";

constexpr char kDistortedCoordinate[] =
    "vec2 distoCoord = getDistoCoord();"
    "if (!all(equal(clamp(distoCoord, getScreenCenter()-vec2(0.25,0.5),"
    " getScreenCenter()+vec2(0.25,0.5)), distoCoord))) a = vec2(-1.0);"
    "else {"
    " distoCoord.x=distoCoord.x*(uViewportSize.x*2.0)-(step(uViewportWidth,"
    "gl_FragCoord.x)*uViewportWidth);"
    "distoCoord.y=distoCoord.y*uViewportSize.y;a=p(qb,distoCoord);";

constexpr char kPlainCoordinate[] = "{ a=p(qb,fragCoord());";

constexpr char kFlip[] = "a.y = 1.0 - a.y;";

constexpr char kYawLimits[] = "float f_x = 1.0 / (abs(uYawMin - uYawMax)/twopi);"
                              "float g_x = f_x * (abs(-pi - uYawMin)/twopi);a.x *= f_x;a.x -= g_x;";

constexpr char kPitchLimits[] =
    "float f_y = 1.0 / (abs(uPitchMin - uPitchMax)/pi);"
    "float g_y = f_y * (abs(halfpi - uPitchMax)/pi);a.y *= f_y;a.y -= g_y;";

constexpr char kFisheyeSourceAngles[] =
    "float theta = (2.0 * a.x - 1.0) * pi;float phi   = halfpi - pi * (1.0-a.y);";

constexpr char kFisheyeSourceAlongZ[] =
    "float z = -sin(phi);float y = sin(theta) * cos(phi);float x = cos(theta) * cos(phi);";

constexpr char kFisheyeSourceAlongX[] =
    "float x = -sin(phi);float y = sin(theta) * cos(phi);float z = cos(theta) * cos(phi);";

// pi*1.33 is the reach of the lens.
constexpr char kFisheyeSourceLookup[] =
    "float r = atan(sqrt(x*x+y*y),z) / (pi*1.33);float p = atan(x,y);a.x = r*cos(p) + 0.5;"
    "a.y = r*sin(p) + 0.5;";

constexpr char kRejectOutside[] = "if (a.x < 0.0 || a.x > 1.0 || a.y < 0.0 || a.y > 1.0) discard;";

// Only a double-width target has fragments beyond uViewportWidth: a window shows the first eye.
constexpr char kSideBySide[] =
    "if (gl_FragCoord.x >= uViewportWidth) { a.x /= 2.0; a.x += 0.5; }else { a.x /= 2.0; }";

constexpr char kOverUnder[] =
    "if (gl_FragCoord.x >= uViewportWidth) { a.y /= 2.0; a.y += 0.5; }else { a.y /= 2.0; }";

constexpr char kFetchExchanged[] = "color = texture2D(uSampler,a).bgr;";

constexpr char kFetch[] = "color = texture2D(uSampler,a).rgb;";

constexpr char kMaskOutside[] = "color *= (step(0.0, a.x) * step(0.0, 1.0 - a.x));"
                                "color *= (step(0.0, a.y) * step(0.0, 1.0 - a.y));";

constexpr char kColorMatrix[] = "frag = vec4(uColorMatrix * vec4(color,1.0)).xyz;";

constexpr char kVibrance[] =
    "float maverage = (frag.r + frag.g + frag.b) / 3.0;"
    "float mx = max(frag.r, max(frag.g, frag.b));"
    "float amt = (mx - maverage) * (-uVibrance * 3.0);frag = mix(frag, vec3(mx), amt);";

// With a saturation of 0 the colour moves 1 - 1/1.001 towards grey.
constexpr char kHueAndSaturation[] =
    "float wangle = uHue * pi;float ws = sin(wangle);float wc = cos(wangle);"
    "vec3 wweights = (vec3(2.0 * wc, -sqrt(3.0) * ws - wc, sqrt(3.0) * ws - wc) + 1.0) / 3.0;"
    "float wlen = length(frag);"
    "frag = vec3(dot(frag, wweights.xyz), dot(frag, wweights.zxy), dot(frag, wweights.yzx));"
    "float waverage = (frag.r + frag.g + frag.b) / 3.0;"
    "float satPositive = step(0.0, uSaturation);"
    "float mulSat = satPositive * (1.0 - 1.0 / (1.001 - uSaturation)) + (1.0 - satPositive) *"
    " (-uSaturation);"
    "frag += (vec3(waverage) - frag) * mulSat;";

constexpr char kBrightnessAndContrast[] =
    "frag += uBrightness;frag = (frag - 0.5) / (1.0 - uContrast) + 0.5;";

constexpr char kSepia[] = "float yy = 0.3 * frag.r + 0.59 * frag.g + 0.11 * frag.b;"
                          "frag = vec3(yy + 0.15, yy + 0.07, yy - 0.12);";

constexpr char kBlackAndWhite[] =
    "float threshold = 0.5;float yy = 0.3 *frag.r + 0.59 * frag.g + 0.11 * frag.b;"
    "yy = yy < threshold ? 0.0 : 1.0;frag = vec3(yy, yy, yy);";

constexpr char kTv[] =
    "vec3 fxtmp = frag;fxtmp = clamp(1.4 * fxtmp * fxtmp, 0.0, 1.0);"
    "float sweepDensity = uViewportSize.y * 1.50;float sweepRate = 60.0;"
    "float v = 0.5 + ((fragCoord() / uViewportSize).y - 0.5) * (0.9 + 0.1 * sin(0.2 * uTime));"
    "fxtmp *= 0.92 + 0.08 * sin(sweepRate * uTime + sweepDensity * v);"
    "fxtmp *= 1.3 + 0.04 * (0.9 * cos(10.0 * uTime) + cos(40.0 * uTime));"
    "frag = clamp(fxtmp * vec3(0.95, 1.05, 0.95), 0.0, 1.0);";

constexpr char kInvert[] = "frag = 1.0 - frag;";

constexpr char kRedOnly[] =
    "vec3 fxtmp = frag;fxtmp.r = clamp(1.5 * fxtmp.r, 0.0, 1.0);"
    "float fxavg = (fxtmp.r + fxtmp.g + fxtmp.b) / 3.0;"
    "float thr = smoothstep(0.2, 0.8, fxtmp.r) * (1.0 - step(0.1, fxtmp.g)) * (1.0 - step(0.1,"
    " fxtmp.b));"
    "float gb = fxavg * (1.0 - thr);fxtmp = vec3(max(fxavg, thr), gb, gb);frag = fxtmp;";

constexpr char kYellowOnly[] =
    "vec3 fxtmp = frag;fxtmp.r = clamp(1.5 * fxtmp.r, 0.0, 1.0);"
    "fxtmp.g = clamp(1.5 * fxtmp.g, 0.0, 1.0);"
    "float fxavg = (fxtmp.r + fxtmp.g + fxtmp.b) / 3.0;"
    "float thr = smoothstep(0.2, 0.8, fxtmp.r) * smoothstep(0.2, 0.8, fxtmp.g) * (1.0 -"
    " step(0.1, fxtmp.b));"
    "float gb = fxavg * (1.0 - thr);fxtmp = vec3(max(fxavg, thr), max(fxavg, thr), gb);"
    "frag = fxtmp;";

constexpr char kBlueOnly[] =
    "vec3 fxtmp = frag;fxtmp.b = clamp(1.5 * fxtmp.b, 0.0, 1.0);"
    "float fxavg = (fxtmp.r + fxtmp.g + fxtmp.b) / 3.0;"
    "float thr = smoothstep(0.2, 0.8, fxtmp.b) * (1.0 - step(0.1, fxtmp.r)) * (1.0 - step(0.1,"
    " fxtmp.g));"
    "float gb = fxavg * (1.0 - thr);fxtmp = vec3(gb, gb, max(fxavg, thr));frag = fxtmp;";

constexpr char kVignetting[] =
    "vec3 vigtmp = frag * smoothstep(0.8, uVignettingRadius * 0.799, distance(pixel, vec2(0.5,"
    " 0.5)) * (uVignettingAmount + uVignettingRadius));";

constexpr char kOutput[] = "gl_FragColor = vec4(vigtmp, 1.0);";

} // namespace ShaderSnippets
